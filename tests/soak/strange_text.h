// strange_text.h - text as nobody writes it. Pure. [any]
#pragma once
#include <cstdint>
#include <string>
#include "tests/soak/dice.h"

// Complex scripts: their letters join, reorder or stack, from Hebrew on to the Khmer and beyond (U+0580 to U+1FFF).
enum class Scripts : std::uint8_t { kAll, kNoComplex };

// So many bytes, none of them 0: UTF-8 whole and broken, of scripts only if they may be there.
std::string strangeText(Dice& dice, std::size_t bytes, Scripts scripts);
