// What a board cannot do without: takes a line at a socket, commits a row to an SQLite file in WAL
// with synchronous=FULL, and answers a line.
//
//   commit SOCKET DATABASE

#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

static const char answer[] = "{\"kind\":\"written\",\"message\":\"Commented on t000001.\"}\n";

static void fail(const char* what) {
  perror(what);
  exit(1);
}

static void check(int result, sqlite3* database) {
  if (result == SQLITE_OK || result == SQLITE_DONE) return;
  fprintf(stderr, "%s\n", sqlite3_errmsg(database));
  exit(1);
}

static void serve(int connection, sqlite3* database, sqlite3_stmt* insert) {
  static char line[1 << 16];
  size_t size = 0;
  while (size < sizeof line && (size == 0 || line[size - 1] != '\n')) {
    const ssize_t count = read(connection, line + size, sizeof line - size);
    if (count <= 0) return;
    size += (size_t)count;
  }
  check(sqlite3_bind_text(insert, 1, line, (int)size - 1, SQLITE_STATIC), database);
  check(sqlite3_step(insert), database);
  check(sqlite3_reset(insert), database);
  if (write(connection, answer, sizeof answer - 1) < 0) perror("write");
}

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  sqlite3* database = NULL;
  check(sqlite3_open(argv[2], &database), database);
  check(sqlite3_exec(database,
                     "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = WAL;"
                     "PRAGMA synchronous = FULL;"
                     "CREATE TABLE rows (id INTEGER PRIMARY KEY, body TEXT)",
                     NULL, NULL, NULL),
        database);
  sqlite3_stmt* insert = NULL;
  check(sqlite3_prepare_v2(database, "INSERT INTO rows (body) VALUES (?1)", -1, &insert, NULL),
        database);
  struct sockaddr_un address = {.sun_family = AF_UNIX};
  strncpy(address.sun_path, argv[1], sizeof address.sun_path - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  if (listener < 0 || bind(listener, (struct sockaddr*)&address, sizeof address) != 0 ||
      listen(listener, 16) != 0) {
    fail(argv[1]);
  }
  puts("ready");
  fflush(stdout);
  for (;;) {
    const int connection = accept(listener, NULL, NULL);
    if (connection < 0) fail("accept");
    serve(connection, database, insert);
    close(connection);
  }
}
