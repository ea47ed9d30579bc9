// output_win.h - the standard output of a program that Windows gives no console.
#pragma once
#include <string_view>

// Writes UTF-8 to a redirected standard output as it is, otherwise to the console of the program that started us; to
// nowhere if there is neither.
void printText(std::string_view utf8);
