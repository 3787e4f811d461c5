// The app as every side of a benchmark meets it: whatever is asked at a socket, its file is the
// reply, in as few writes as the system takes.
//
//   app SOCKET REPLY_FILE [SOCKET REPLY_FILE ...]
//
// Says "ready" on standard output when it listens, and ends at the end of standard input.

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

enum { most_sockets = 32, waiting_connections = 16 };

struct reply {
  char* data;
  size_t size;
};

static void fail(const char* what) {
  perror(what);
  exit(1);
}

static struct reply load(const char* path) {
  const int fd = open(path, O_RDONLY);
  struct stat status;
  if (fd < 0 || fstat(fd, &status) != 0) fail(path);
  struct reply reply = {malloc((size_t)status.st_size + 1), (size_t)status.st_size};
  size_t done = 0;
  while (done < reply.size) {
    const ssize_t got = read(fd, reply.data + done, reply.size - done);
    if (got <= 0) fail(path);
    done += (size_t)got;
  }
  close(fd);
  if (reply.size == 0 || reply.data[reply.size - 1] != '\n') reply.data[reply.size++] = '\n';
  return reply;
}

static int listen_at(const char* path) {
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  struct sockaddr_un address = {.sun_family = AF_UNIX};
  if (strlen(path) >= sizeof address.sun_path) fail(path);
  strcpy(address.sun_path, path);
  if (bind(fd, (struct sockaddr*)&address, sizeof address) != 0) fail(path);
  if (listen(fd, waiting_connections) != 0) fail(path);
  return fd;
}

/// Takes in the request, which ends with a line feed; false when the other side went away first.
static bool read_request(int fd) {
  char request[65536];
  for (;;) {
    const ssize_t got = read(fd, request, sizeof request);
    if (got <= 0) return false;
    if (memchr(request, '\n', (size_t)got) != NULL) return true;
  }
}

static void answer(int listener, struct reply reply) {
  const int fd = accept(listener, NULL, NULL);
  if (fd < 0) return;
  if (read_request(fd)) {
    while (reply.size > 0) {
      const ssize_t written = write(fd, reply.data, reply.size);
      if (written <= 0) break;
      reply.data += written;
      reply.size -= (size_t)written;
    }
  }
  close(fd);
}

int main(int count, char** arguments) {
  const int sockets = (count - 1) / 2;
  if (sockets < 1 || sockets > most_sockets) return 2;
  signal(SIGPIPE, SIG_IGN);
  struct pollfd watched[most_sockets + 1] = {{.fd = STDIN_FILENO, .events = POLLIN}};
  struct reply replies[most_sockets + 1] = {0};
  for (int i = 1; i <= sockets; i++) {
    watched[i] = (struct pollfd){.fd = listen_at(arguments[2 * i - 1]), .events = POLLIN};
    replies[i] = load(arguments[2 * i]);
  }
  puts("ready");
  fflush(stdout);
  for (;;) {
    if (poll(watched, (nfds_t)sockets + 1, -1) < 0 && errno != EINTR) fail("poll");
    if (watched[0].revents != 0) return 0;
    for (int i = 1; i <= sockets; i++) {
      if (watched[i].revents != 0) answer(watched[i].fd, replies[i]);
    }
  }
}
