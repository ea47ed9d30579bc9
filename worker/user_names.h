// user_names.h - takes people's names out of paths before a text goes to somebody else.
#pragma once
#include <string>
#include <string_view>
#include <vector>

// [any] One line of UTF-8 with "<user>" in place of
// - what follows Users, home or Documents and Settings in a path, up to the next separator. A path that ends there
//   has no certain end, since names hold blanks and commas: everything up to a character that no name has goes;
// - each of accountNames (UTF-8) that stands as a whole between two characters, one of them a separator.
// Separators are \ and /, also doubled; upper and lower case make no difference.
std::string maskUserNames(std::string_view line, std::vector<std::string> accountNames);
