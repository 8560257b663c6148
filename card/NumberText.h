// Integers as text in bases 2 to 36.
#pragma once

namespace card {

/// Writes `value` in base `radix` (2 to 36, lower-case digits) with a terminating zero into `text`,
/// which has room for at least 32 characters. Zero is written as the empty text, so a size of less
/// than a kilobyte shows only its unit. A negative value or a radix outside 2 to 36 leaves `text`
/// unchanged.
void writeNumber(int value, char* text, int radix);

} // namespace card
