// Times several programs at the same work by turns, so that whatever else the machine does falls
// on all of them alike.
//
//   driver start|talk SECONDS BATCH LINES INPUT_FILE -- PROGRAM [ARGUMENT ...] [-- PROGRAM ...]
//
// start: from before a program is started to its LINES-th line of output, or to its end when it has
//        said less; with 0 lines, to its end after its input was closed. BATCH is not used.
// talk:  each program is started once. From writing the input to the LINES-th line of output, BATCH
//        times in a row, divided by BATCH. Before that once untimed, because the program whose turn
//        it was has left the caches full of its own, and may still be tidying up.
//
// Goes on for SECONDS, at least `fewest_turns` and at most `most_turns` turns. Prints one line for
// each sample: the program's place in the list, counted from 0, and nanoseconds.

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

enum {
  most_sides = 8,
  fewest_turns = 5,
  most_turns = 20000,
  grace_seconds = 240,  // a program that answers nothing for so long hangs
  room = 1 << 20,
};

struct side {
  char** arguments;
  pid_t process;
  int to;
  int from;
};

struct work {
  bool starts;
  double seconds;
  long batch;
  long lines;
  char* input;
  size_t size;
};

static struct side sides[most_sides];
static int side_count;
static char output[room];

static void fail(const char* what) {
  fprintf(stderr, "driver: %s: %s\n", what, errno != 0 ? strerror(errno) : "failed");
  for (int i = 0; i < side_count; i++) {
    if (sides[i].process > 0) kill(sides[i].process, SIGKILL);
  }
  exit(1);
}

static int64_t now(void) {
  struct timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return (int64_t)time.tv_sec * 1000000000 + time.tv_nsec;
}

static void make_pipe(int ends[2]) {
  if (pipe(ends) != 0) fail("pipe");
  fcntl(ends[0], F_SETFD, FD_CLOEXEC);
  fcntl(ends[1], F_SETFD, FD_CLOEXEC);
}

static void start(struct side* side) {
  int in[2];
  int out[2];
  make_pipe(in);
  make_pipe(out);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  errno =
      posix_spawnp(&side->process, side->arguments[0], &actions, NULL, side->arguments, environ);
  if (errno != 0) fail(side->arguments[0]);
  posix_spawn_file_actions_destroy(&actions);
  close(in[0]);
  close(out[1]);
  side->to = in[1];
  side->from = out[0];
  fcntl(side->to, F_SETFL, O_NONBLOCK);
}

static void hang_up(struct side* side) {
  if (side->to >= 0) close(side->to);
  side->to = -1;
}

/// Waits for the end of a program whose input is closed.
static void finish(struct side* side) {
  hang_up(side);
  while (waitpid(side->process, NULL, 0) < 0 && errno == EINTR) continue;
  side->process = 0;
  close(side->from);
}

static size_t feed(struct side* side, const char* bytes, size_t size) {
  const ssize_t written = write(side->to, bytes, size);
  // A program that reads nothing may have ended already; one that should not have ended is found
  // out when its answer is missing.
  if (written < 0 && errno == EPIPE) return size;
  if (written < 0 && errno != EAGAIN) fail("writing");
  return written > 0 ? (size_t)written : 0;
}

/// Reads what there is and says how many lines ended in it; -1 at the end of output.
static long take(struct side* side) {
  const ssize_t got = read(side->from, output, sizeof output);
  if (got < 0) fail("reading");
  if (got == 0) return -1;
  long lines = 0;
  const char* behind = output + got;
  for (const char* at = output; (at = memchr(at, '\n', (size_t)(behind - at))) != NULL; at++) {
    lines++;
  }
  return lines;
}

/// Writes the input while reading the output, until all lines have come; false when the output
/// ended before.
static bool converse(struct side* side, const struct work* work) {
  size_t written = feed(side, work->input, work->size);
  long lines = 0;
  while (lines < work->lines) {
    // Most requests are small and written at once: then reading waits for the answer by itself.
    if (written < work->size) {
      struct pollfd ends[2] = {{.fd = side->from, .events = POLLIN},
                               {.fd = side->to, .events = POLLOUT}};
      if (poll(ends, 2, -1) < 0) fail("poll");
      if (ends[1].revents != 0) {
        written += feed(side, work->input + written, work->size - written);
      }
      if (ends[0].revents == 0) continue;
    }
    const long more = take(side);
    if (more < 0) return false;
    lines += more;
  }
  return true;
}

static int64_t time_start(struct side* side, const struct work* work) {
  const int64_t begin = now();
  start(side);
  if (work->lines > 0) {
    converse(side, work);
  } else {
    feed(side, work->input, work->size);
    finish(side);
  }
  const int64_t end = now();
  if (side->process != 0) finish(side);
  return end - begin;
}

static int64_t time_talk(struct side* side, const struct work* work) {
  if (!converse(side, work)) fail(side->arguments[0]);
  const int64_t begin = now();
  for (long i = 0; i < work->batch; i++) {
    if (!converse(side, work)) fail(side->arguments[0]);
  }
  return (now() - begin) / work->batch;
}

static void take_turns(const struct work* work) {
  const int64_t end = now() + (int64_t)(work->seconds * 1e9);
  for (int turn = 0; turn < most_turns && (turn < fewest_turns || now() < end); turn++) {
    for (int i = 0; i < side_count; i++) {
      const int64_t taken = work->starts ? time_start(&sides[i], work) : time_talk(&sides[i], work);
      printf("%d %lld\n", i, (long long)taken);
    }
  }
}

static void load_input(struct work* work, const char* path) {
  const int fd = open(path, O_RDONLY);
  struct stat status;
  if (fd < 0 || fstat(fd, &status) != 0) fail(path);
  work->size = (size_t)status.st_size;
  work->input = malloc(work->size + 1);
  size_t done = 0;
  while (done < work->size) {
    const ssize_t got = read(fd, work->input + done, work->size - done);
    if (got <= 0) fail(path);
    done += (size_t)got;
  }
  close(fd);
}

static void load_sides(char** arguments) {
  for (; *arguments != NULL; arguments++) {
    if (strcmp(*arguments, "--") != 0) continue;
    *arguments = NULL;
    if (side_count == most_sides || arguments[1] == NULL) fail("too many or too few programs");
    sides[side_count++].arguments = arguments + 1;
  }
}

int main(int count, char** arguments) {
  if (count < 8) {
    fputs("usage: driver start|talk SECONDS BATCH LINES INPUT_FILE -- PROGRAM ...\n", stderr);
    return 2;
  }
  struct work work = {.starts = strcmp(arguments[1], "start") == 0,
                      .seconds = strtod(arguments[2], NULL),
                      .batch = strtol(arguments[3], NULL, 10),
                      .lines = strtol(arguments[4], NULL, 10)};
  load_input(&work, arguments[5]);
  load_sides(arguments + 6);
  signal(SIGPIPE, SIG_IGN);
  alarm((unsigned)work.seconds + grace_seconds);

  for (int i = 0; i < side_count && !work.starts; i++) start(&sides[i]);
  take_turns(&work);
  for (int i = 0; i < side_count; i++) {
    if (sides[i].process != 0) finish(&sides[i]);
  }
  return 0;
}
