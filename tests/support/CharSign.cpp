// Part of every library that is built for the other sign of plain char: proves that it is.
#include <limits>

#if defined(EXPECT_signedChar)
static_assert(std::numeric_limits<char>::is_signed);
#elif defined(EXPECT_unsignedChar)
static_assert(!std::numeric_limits<char>::is_signed);
#else
#error "the build does not say which sign it is for"
#endif
