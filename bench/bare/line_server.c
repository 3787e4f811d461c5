// The same pipe line, the same connection and the same bytes as the real server, and no work on
// them: a tool call's answer is the app's reply as it came. It understands only the requests that
// the benchmarks send.
//
//   line_server LIST_BYTES    answers tools/list with so many bytes

#include <stdbool.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "exchange.h"

enum { chunk_size = 65536, instructions_size = 2760 };

static const char opening[] = "{\"jsonrpc\":\"2.0\",\"result\":";

static struct buffer tool_list;
static struct buffer welcome;
static struct buffer message;

/// Adds `size` bytes of text between two ends.
static void fill(struct buffer* buffer, const char* begin, size_t size, const char* end) {
  append(buffer, begin, strlen(begin));
  reserve(buffer, size);
  memset(buffer->data + buffer->size, 'x', size);
  buffer->size += size;
  append(buffer, end, strlen(end));
}

/// What stands behind `key` up to one of the bytes in `ends`; empty when the key is not there.
static struct buffer value_of(const char* line, const char* key, const char* ends) {
  char* begin = strstr(line, key);
  if (begin == NULL) return (struct buffer){0};
  begin += strlen(key);
  return (struct buffer){.data = begin, .size = strcspn(begin, ends)};
}

static bool equals(struct buffer text, const char* other) {
  return text.size == strlen(other) && memcmp(text.data, other, text.size) == 0;
}

static void add_result(const char* line, struct buffer method) {
  if (equals(method, "initialize")) {
    append(&message, welcome.data, welcome.size);
  } else if (equals(method, "tools/list")) {
    append(&message, tool_list.data, tool_list.size);
  } else if (equals(method, "tools/call")) {
    const struct buffer name = value_of(line, "\"name\":\"", "\"");
    char tool[64] = {0};
    if (name.size > 0 && name.size < sizeof tool) memcpy(tool, name.data, name.size);
    if (!exchange(tool, &message)) append(&message, "null", 4);
  } else {
    append(&message, "{}", 2);
  }
}

static bool answer(const char* line) {
  const struct buffer method = value_of(line, "\"method\":\"", "\"");
  if (method.size == 0) return true;
  const struct buffer id = value_of(line, "\"id\":", ",}");
  message.size = 0;
  append(&message, opening, sizeof opening - 1);
  add_result(line, method);
  append(&message, ",\"id\":", 6);
  append(&message, id.data, id.size);
  append(&message, "}\n", 2);
  return write_all(STDOUT_FILENO, message.data, message.size);
}

int main(int count, char** arguments) {
  fill(&tool_list, "{\"tools\":\"", count > 1 ? strtoul(arguments[1], NULL, 10) : 0, "\"}");
  fill(&welcome, "{\"instructions\":\"", instructions_size, "\"}");

  struct buffer input = {0};
  for (;;) {
    reserve(&input, chunk_size + 1);
    char* chunk = input.data + input.size;
    const ssize_t got = read(STDIN_FILENO, chunk, chunk_size);
    if (got <= 0) return 0;
    input.size += (size_t)got;
    char* begin = input.data;
    char* const behind = input.data + input.size;
    for (char* end = memchr(chunk, '\n', (size_t)got); end != NULL;
         end = memchr(begin, '\n', (size_t)(behind - begin))) {
      *end = '\0';
      if (!answer(begin)) return 0;
      begin = end + 1;
    }
    input.size = (size_t)(behind - begin);
    memmove(input.data, begin, input.size);
  }
}
