// What the toolkit itself says, in the languages that its own tables lack.
#pragma once

namespace fax::toolkit {

// From now on the texts of the toolkit's panels that a user of our programs meets come from the programs' catalogues;
// what has no translation there comes from the toolkit as before. Call it after speak().
void translate_gnustep();

}  // namespace fax::toolkit
