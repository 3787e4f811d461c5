// Stands between the program and the system's calls, and lets them go wrong as the environment
// says: QUILLPOST_FAULTS is a list of CALL:WHEN:WHAT with commas between.
//
//   CALL  socket, setsockopt, connect, send, recv (a read from a socket), shutdown, close, open,
//         fstat, readfile (a read from a file), opendir, stdin, stdout, stderr, poll
//   WHEN  N (the Nth such call), N+ (that one and all after it), odd, even
//   WHAT  eERRNO   fails without being done
//         dERRNO   is done, and fails all the same
//         sN       passes on N bytes at most
//         sn       passes on as many bytes at most as calls of this name have been made
//         z        returns 0 without being done
//
// At the end of the program it writes to the file that QUILLPOST_FAULTS_LOG names, a line each: how
// often every call was made, how many descriptors were left open, how many were closed that were not
// open, and how many files were opened for writing. In C, so that the program gets no second C++
// runtime by it.

#define _GNU_SOURCE
#undef _FORTIFY_SOURCE

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

enum { mostRules = 16, mostDescriptors = 256 };

static const char *const names[] = {"socket", "setsockopt", "connect",  "send",    "recv",
                                    "shutdown", "close",    "open",     "fstat",   "readfile",
                                    "opendir",  "stdin",    "stdout",   "stderr",  "poll"};
enum call {
  callSocket, callSetsockopt, callConnect, callSend, callRecv,
  callShutdown, callClose, callOpen, callFstat, callReadfile,
  callOpendir, callStdin, callStdout, callStderr, callPoll,
  calls
};

struct rule {
  enum call call;
  long first, last;
  int parity;  // -1 for any
  char what;   // e, d, s, z
  long number; // -1 for the count of calls
};

static struct rule rules[mostRules];
static int ruleCount;
static long made[calls];
static char isOpen[mostDescriptors], isSocket[mostDescriptors];
static long openDirectories, badCloses, writableFiles;

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static enum call callNamed(const char *name, size_t length) {
  for (int i = 0; i < calls; ++i)
    if (strlen(names[i]) == length && memcmp(names[i], name, length) == 0) return (enum call)i;
  fprintf(stderr, "no such call: %s\n", name);
  _exit(99);
}

__attribute__((constructor)) static void readRules(void) {
  const char *at = getenv("QUILLPOST_FAULTS");
  while (at != NULL && *at != '\0' && ruleCount < mostRules) {
    struct rule *rule = &rules[ruleCount++];
    const char *when = strchr(at, ':') + 1;
    const char *what = strchr(when, ':') + 1;
    rule->call = callNamed(at, (size_t)(when - 1 - at));
    rule->parity = -1;
    rule->first = 1;
    rule->last = 1L << 60;
    if (strncmp(when, "odd", 3) == 0) {
      rule->parity = 1;
    } else if (strncmp(when, "even", 4) == 0) {
      rule->parity = 0;
    } else {
      char *end;
      rule->first = strtol(when, &end, 10);
      if (*end != '+') rule->last = rule->first;
    }
    rule->what = *what;
    rule->number = what[1] == 'n' ? -1 : strtol(what + 1, NULL, 10);
    at = strchr(what, ',');
    if (at != NULL) ++at;
  }
}

__attribute__((destructor)) static void writeLog(void) {
  const char *path = getenv("QUILLPOST_FAULTS_LOG");
  if (path == NULL) return;
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  char line[64];
  long left = openDirectories;
  for (int i = 0; i < mostDescriptors; ++i) left += isOpen[i];
  for (int i = 0; i < calls; ++i) {
    const int size = snprintf(line, sizeof line, "%s %ld\n", names[i], made[i]);
    syscall(SYS_write, fd, line, (size_t)size);
  }
  const int size = snprintf(line, sizeof line, "left %ld\nbad %ld\nwritable %ld\n", left,
                            badCloses, writableFiles);
  syscall(SYS_write, fd, line, (size_t)size);
  syscall(SYS_close, fd);
}

/// The rule for a call that is being made now; null when it is to go through.
static const struct rule *enter(enum call call) {
  const long nth = ++made[call];
  for (int i = 0; i < ruleCount; ++i) {
    const struct rule *rule = &rules[i];
    if (rule->call != call || nth < rule->first || nth > rule->last) continue;
    if (rule->parity < 0 || rule->parity == nth % 2) return rule;
  }
  return NULL;
}

static size_t capped(const struct rule *rule, enum call call, size_t count) {
  if (rule == NULL || rule->what != 's') return count;
  const size_t most = (size_t)(rule->number < 0 ? made[call] : rule->number);
  return count < most ? count : most;
}

/// Whether the rule keeps the call from being done.
static int prevents(const struct rule *rule) {
  return rule != NULL && (rule->what == 'e' || rule->what == 'z');
}

static long outcome(const struct rule *rule, long result) {
  if (rule == NULL || rule->what == 's') return result;
  if (rule->what == 'z') return 0;
  errno = (int)rule->number;
  return -1;
}

static void opened(int fd, int socket) {
  if (fd < 0 || fd >= mostDescriptors) return;
  isOpen[fd] = 1;
  isSocket[fd] = (char)socket;
}

int socket(int domain, int type, int protocol) {
  const struct rule *rule = enter(callSocket);
  if (prevents(rule)) return (int)outcome(rule, 0);
  const int fd = NEXT(socket)(domain, type, protocol);
  opened(fd, 1);
  return fd;
}

int setsockopt(int fd, int level, int option, const void *value, socklen_t size) {
  const struct rule *rule = enter(callSetsockopt);
  if (prevents(rule)) return (int)outcome(rule, 0);
  return (int)outcome(rule, NEXT(setsockopt)(fd, level, option, value, size));
}

int connect(int fd, const struct sockaddr *address, socklen_t size) {
  const struct rule *rule = enter(callConnect);
  if (prevents(rule)) return (int)outcome(rule, 0);
  return (int)outcome(rule, NEXT(connect)(fd, address, size));
}

ssize_t send(int fd, const void *bytes, size_t count, int flags) {
  const struct rule *rule = enter(callSend);
  if (prevents(rule)) return outcome(rule, 0);
  return outcome(rule, NEXT(send)(fd, bytes, capped(rule, callSend, count), flags));
}

int shutdown(int fd, int how) {
  const struct rule *rule = enter(callShutdown);
  if (prevents(rule)) return (int)outcome(rule, 0);
  return (int)outcome(rule, NEXT(shutdown)(fd, how));
}

int close(int fd) {
  const struct rule *rule = enter(callClose);
  const int result = NEXT(close)(fd);
  if (result != 0) ++badCloses;
  if (fd >= 0 && fd < mostDescriptors) isOpen[fd] = 0;
  return (int)outcome(rule, result);
}

ssize_t read(int fd, void *bytes, size_t count) {
  enum call call = fd == STDIN_FILENO ? callStdin : callReadfile;
  if (fd >= 0 && fd < mostDescriptors && isOpen[fd] && isSocket[fd]) call = callRecv;
  const struct rule *rule = enter(call);
  if (prevents(rule)) return outcome(rule, 0);
  return outcome(rule, NEXT(read)(fd, bytes, capped(rule, call, count)));
}

ssize_t write(int fd, const void *bytes, size_t count) {
  const enum call call = fd == STDERR_FILENO ? callStderr : callStdout;
  const struct rule *rule = enter(call);
  if (prevents(rule)) return outcome(rule, 0);
  return outcome(rule, NEXT(write)(fd, bytes, capped(rule, call, count)));
}

int open(const char *path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  if ((flags & O_ACCMODE) != O_RDONLY) ++writableFiles;
  const struct rule *rule = enter(callOpen);
  if (prevents(rule)) return (int)outcome(rule, 0);
  const int fd = NEXT(open)(path, flags, mode);
  opened(fd, 0);
  return fd;
}

int fstat(int fd, struct stat *status) {
  const struct rule *rule = enter(callFstat);
  if (prevents(rule)) return (int)outcome(rule, 0);
  return (int)outcome(rule, NEXT(fstat)(fd, status));
}

DIR *opendir(const char *path) {
  const struct rule *rule = enter(callOpendir);
  if (prevents(rule)) {
    outcome(rule, 0);
    return NULL;
  }
  DIR *stream = NEXT(opendir)(path);
  if (stream != NULL) ++openDirectories;
  return stream;
}

int closedir(DIR *stream) {
  --openDirectories;
  return NEXT(closedir)(stream);
}

int poll(struct pollfd *wanted, nfds_t count, int patience) {
  const struct rule *rule = enter(callPoll);
  if (prevents(rule)) return (int)outcome(rule, 0);
  return (int)outcome(rule, NEXT(poll)(wanted, count, patience));
}

// What the calls are named in a program that was compiled to check the sizes of its buffers.
ssize_t __read_chk(int fd, void *bytes, size_t count, size_t room);
ssize_t __read_chk(int fd, void *bytes, size_t count, size_t room) {
  if (count > room) abort();
  return read(fd, bytes, count);
}
int __poll_chk(struct pollfd *wanted, nfds_t count, int patience, size_t room);
int __poll_chk(struct pollfd *wanted, nfds_t count, int patience, size_t room) {
  if (room / sizeof *wanted < count) abort();
  return poll(wanted, count, patience);
}
int __open_2(const char *path, int flags);
int __open_2(const char *path, int flags) { return open(path, flags); }
