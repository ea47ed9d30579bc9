// output_win.h - the standard output of a program that Windows gives no console.
#pragma once
#include <string_view>

// Writes UTF-8 unchanged to a redirected standard output, otherwise to the console of the program that started us; if
// there is neither, to nowhere.
void printText(std::string_view utf8);
