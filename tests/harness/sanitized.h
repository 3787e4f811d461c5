#pragma once

// QUILLPOST_SANITIZED: 1 where the tests run under the address sanitizer, which has an allocator of
// its own and takes several times as long, else 0.

#if defined(__SANITIZE_ADDRESS__)
#define QUILLPOST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLPOST_SANITIZED 1
#endif
#endif
#ifndef QUILLPOST_SANITIZED
#define QUILLPOST_SANITIZED 0
#endif
