// text_side.h - the side of its box that a line of text is aligned to.
#pragma once

enum class TextSide { kLeft, kMiddle, kRight };
