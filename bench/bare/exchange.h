#pragma once

// One exchange with the app and nothing around it: the system calls that it cannot do without.

#include <stdbool.h>
#include <stddef.h>

/// Bytes that grow at the end and are used again.
struct buffer {
  char* data;
  size_t size;
  size_t room;
};

/// Makes sure that `more` bytes fit after what is there; ends the program when they cannot.
void reserve(struct buffer* buffer, size_t more);

/// Adds bytes at the end.
void append(struct buffer* buffer, const char* bytes, size_t size);

/// Reads the token file, asks the app `method` over a connection of its own and adds the reply to
/// `reply` without its line feed. False when there was none.
bool exchange(const char* method, struct buffer* reply);

/// Writes all of it; false when the reader has gone.
bool write_all(int fd, const char* bytes, size_t size);
