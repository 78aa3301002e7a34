// What the toolkit itself says, in the languages that its own tables lack.
#pragma once
#import <AppKit/AppKit.h>

namespace fax::toolkit {

// From now on the texts of the toolkit's panels that a user of our programs meets come from the programs' catalogues;
// what has no translation there comes from the toolkit as before. Call it after speak().
void translate_gnustep();

// Makes the buttons of a panel that opens or saves files wide enough for their titles, which the toolkit does not.
void fit_buttons(NSSavePanel *panel);

}  // namespace fax::toolkit
