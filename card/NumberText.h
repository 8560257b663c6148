// Integers as text in any base.
#pragma once

namespace card {

/// Writes `value` in base `radix` (2 to 36, lower-case digits) with a terminating zero into `text`,
/// which holds at least 32 characters. Zero is written as the empty text: a size of no whole
/// kilobyte shows as its bare unit. A negative value or another radix leaves `text` untouched.
void writeNumber(int value, char* text, int radix);

} // namespace card
