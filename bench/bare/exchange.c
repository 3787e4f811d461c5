#include "exchange.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

enum { chunk_size = 4096, first_room = 65536 };

void reserve(struct buffer* buffer, size_t more) {
  if (buffer->room - buffer->size >= more) return;
  size_t room = buffer->room > 0 ? buffer->room : first_room;
  while (room - buffer->size < more) room *= 2;
  buffer->data = realloc(buffer->data, room);
  if (buffer->data == NULL) _exit(1);
  buffer->room = room;
}

void append(struct buffer* buffer, const char* bytes, size_t size) {
  reserve(buffer, size);
  memcpy(buffer->data + buffer->size, bytes, size);
  buffer->size += size;
}

bool write_all(int fd, const char* bytes, size_t size) {
  while (size > 0) {
    const ssize_t written = write(fd, bytes, size);
    if (written <= 0) return false;
    bytes += written;
    size -= (size_t)written;
  }
  return true;
}

static size_t read_token(char* token, size_t room) {
  const int fd = open(getenv("QUILLPOST_COLLAB_TOKEN_FILE"), O_RDONLY | O_CLOEXEC);
  const ssize_t got = read(fd, token, room);
  close(fd);
  size_t size = got > 0 ? (size_t)got : 0;
  while (size > 0 && token[size - 1] <= ' ') size--;
  return size;
}

static int connect_to_app(void) {
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  const struct timeval reading = {40, 0};
  const struct timeval writing = {10, 0};
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &reading, sizeof reading);
  setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &writing, sizeof writing);
  struct sockaddr_un address = {.sun_family = AF_UNIX};
  strncpy(address.sun_path, getenv("QUILLPOST_COLLAB_SOCKET"), sizeof address.sun_path - 1);
  if (connect(fd, (struct sockaddr*)&address, sizeof address) == 0) return fd;
  close(fd);
  return -1;
}

static bool read_reply(int fd, struct buffer* reply) {
  for (;;) {
    reserve(reply, chunk_size);
    char* chunk = reply->data + reply->size;
    const ssize_t got = read(fd, chunk, chunk_size);
    if (got <= 0) return false;
    const char* end = memchr(chunk, '\n', (size_t)got);
    reply->size += end != NULL ? (size_t)(end - chunk) : (size_t)got;
    if (end != NULL) return true;
  }
}

bool exchange(const char* method, struct buffer* reply) {
  char token[256];
  const int token_size = (int)read_token(token, sizeof token);
  char request[1024];
  const int size = snprintf(
      request, sizeof request,
      "{\"protocolVersion\":1,\"token\":\"%.*s\",\"sessionID\":\"%s\",\"method\":\"%s\"}\n",
      token_size, token, getenv("QUILLPOST_SESSION_ID"), method);
  const int fd = connect_to_app();
  if (fd < 0) return false;
  bool done = write_all(fd, request, (size_t)size);
  shutdown(fd, SHUT_WR);
  done = done && read_reply(fd, reply);
  close(fd);
  return done;
}
