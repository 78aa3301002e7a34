// What GTK's programs are told about the desktop's looks.
#pragma once
#include <map>
#include <string>
#include <string_view>

namespace fax::theme {

using GtkSettings = std::map<std::string, std::string, std::less<>>;

// The keys of the group [Settings] in the text of a settings.ini, each with its value, without the space around them.
GtkSettings read_gtk_settings(std::string_view text);

// Of the user's settings.ini, that of GTK 4 before that of GTK 3; empty where there is none.
GtkSettings user_gtk_settings();

}  // namespace fax::theme
