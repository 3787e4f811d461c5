#include "board/page/site.h"

#include "base/text.h"
#include "board/page/deeds.h"
#include "board/page/guard.h"
#include "board/page/launch.h"
#include "board/page/web_files.h"
#include "board/verbs/person.h"
#include "json/record.h"

#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include <httplib.h>
#include <sys/socket.h>

namespace quillpost::board {

namespace {

constexpr std::string_view jsonType = "application/json";

enum Status { ok = 200, unreadable = 400, unknown = 404, refusedByBoard = 409, noBoard = 503 };

/// What came of a request that the board does not answer with a sheet.
struct Outcome {
  std::optional<std::string> message, notice, error;

  bool operator==(const Outcome&) const = default;

  static constexpr auto fields() {
    return std::tuple{json::optional("message", &Outcome::message),
                      json::optional("notice", &Outcome::notice),
                      json::optional("error", &Outcome::error)};
  }
};

/// Answers with bytes that `owner` keeps. They are not packed, as a body set otherwise would be:
/// that takes longer than bringing them here.
template <class Owner>
void answerWith(httplib::Response& out, std::string_view type, std::string_view bytes,
                Owner owner) {
  out.set_content_provider(bytes.size(), std::string(type),
                           [bytes, owner = std::move(owner)](std::size_t offset, std::size_t count,
                                                             httplib::DataSink& sink) {
                             static_cast<void>(owner);  // is kept, and not read
                             return sink.write(bytes.data() + offset, count);
                           });
}

void answerWith(httplib::Response& out, std::string json) {
  const auto kept = std::make_shared<const std::string>(std::move(json));
  answerWith(out, jsonType, *kept, kept);
}

void fail(httplib::Response& out, int status, std::string why) {
  out.status = status;
  answerWith(out, json::encode(Outcome{{}, {}, std::move(why)}));
}

const WebFile* fileAt(std::string_view path) {
  if (path == "/") path = "/index.html";
  for (const WebFile& file : webFiles())
    if (file.path == path) return &file;
  return nullptr;
}

Knock knockOf(const httplib::Request& in, const std::map<std::string, std::string>& headers) {
  const auto header = [&](const char* name) { return std::string_view(headers.at(name)); };
  return {in.method,
          header("Host"),
          header("Origin"),
          header("Sec-Fetch-Site"),
          header("Content-Type"),
          header("Authorization"),
          in.has_header("Transfer-Encoding") || in.has_header("Content-Encoding"),
          fileAt(in.path) != nullptr};
}

/// Why a request is not let in; nothing when it is.
std::optional<Refusal> refusalOf(const httplib::Request& in, const Doorway& doorway) {
  std::map<std::string, std::string> headers;
  for (const char* name : {"Host", "Origin", "Sec-Fetch-Site", "Content-Type", "Authorization"})
    headers[name] = in.get_header_value(name);
  return refusalOf(knockOf(in, headers), doorway);
}

/// The parameter of that name; nothing when it is missing or empty.
std::optional<std::string> given(const httplib::Request& in, const char* name) {
  std::string value = in.get_param_value(name);
  if (value.empty()) return std::nullopt;
  return value;
}

}  // namespace

/// The servers of both addresses, and what they share.
struct Site::Inside {
  Doorway doorway;
  AskBoard ask;
  std::string thread;
  Surroundings around;
  httplib::Server servers[2];
  std::vector<std::thread> threads;
  std::mutex mutex;
  std::map<std::string, std::unique_ptr<Feed>> feeds;
  std::atomic<std::size_t> streams = 0;
  std::atomic<bool> isOver = false;

  void prepare(httplib::Server& server);
  void route(httplib::Server& server);
  void showSheet(TeamworkRequest request, const httplib::Request& in, httplib::Response& out);
  void carryOutDeed(const httplib::Request& in, httplib::Response& out);
  void showLaunch(const httplib::Request& in, httplib::Response& out) const;
  void streamMoves(const httplib::Request& in, httplib::Response& out);
  Feed* feedOf(const std::string& name);
};

void Site::Inside::showSheet(TeamworkRequest request, const httplib::Request& in,
                             httplib::Response& out) {
  request.name = given(in, "thread").value_or(thread);
  std::string why;
  std::optional<TeamworkResponse> response = ask(std::move(request), why);
  if (!response) return fail(out, noBoard, std::move(why));
  std::string message = std::move(response->message).value_or("");
  if (response->kind == TeamworkResponse::Kind::error) {
    return fail(out, refusedByBoard, std::move(message));
  }
  answerWith(out, std::move(message));
}

void Site::Inside::carryOutDeed(const httplib::Request& in, httplib::Response& out) {
  std::string why;
  std::optional<TeamworkRequest> deed = deedOf(in.body, around, why);
  if (!deed) return fail(out, unreadable, std::move(why));
  if (!deed->name) deed->name = thread;
  std::optional<TeamworkResponse> response = ask(*std::move(deed), why);
  if (!response) return fail(out, noBoard, std::move(why));
  if (response->kind == TeamworkResponse::Kind::error) {
    return fail(out, refusedByBoard, std::move(response->message).value_or(""));
  }
  answerWith(out, json::encode(Outcome{response->message, response->notice, {}}));
}

void Site::Inside::showLaunch(const httplib::Request& in, httplib::Response& out) const {
  std::string why;
  std::optional<std::string> launch = launchOf(in.body, around, why);
  if (!launch) return fail(out, unreadable, std::move(why));
  answerWith(out, *std::move(launch));
}

/// The feed of a Thread; null when too many are followed.
Feed* Site::Inside::feedOf(const std::string& name) {
  const std::lock_guard lock(mutex);
  const auto found = feeds.find(name);
  if (found != feeds.end()) return found->second.get();
  if (feeds.size() >= feedsAtMost) return nullptr;
  return feeds.emplace(name, std::make_unique<Feed>(ask, name)).first->second.get();
}

void Site::Inside::streamMoves(const httplib::Request& in, httplib::Response& out) {
  Feed* const feed = feedOf(given(in, "thread").value_or(thread));
  if (feed == nullptr || ++streams > streamsAtMost) {
    if (feed != nullptr) --streams;
    return fail(out, noBoard, "too many pages are open");
  }
  auto reader = std::make_shared<Feed::Reader>(*feed);
  const auto writeMore = [this, reader](std::size_t, httplib::DataSink& sink) {
    if (isOver) return false;
    const std::optional<Feed::Event> event = reader->next(std::chrono::seconds(1));
    // A client that has gone is noticed by what is written to it.
    const std::string piece =
        event ? text::cat("event: ", event->kind, "\ndata: ", event->data, "\n\n")
              : std::string(":\n\n");
    return sink.write(piece.data(), piece.size());
  };
  out.set_chunked_content_provider("text/event-stream", writeMore, [this](bool) { --streams; });
}

void Site::Inside::prepare(httplib::Server& server) {
  server.new_task_queue = [] { return new httplib::ThreadPool(workers); };
  server.set_socket_options([](auto socket) {
    // A port that another program serves is not shared with it.
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  server.set_tcp_nodelay(true);
  // One request a connection: no body that was refused is taken for the next request.
  server.set_keep_alive_max_count(1);
  server.set_read_timeout(clientPatience);
  server.set_write_timeout(clientPatience);
  server.set_payload_max_length(bodyLimit);
  httplib::Headers headers;
  for (const Header& header : headersOfAll) headers.emplace(header.name, header.value);
  server.set_default_headers(headers);
  server.set_pre_routing_handler([this](const httplib::Request& in, httplib::Response& out) {
    using Handled = httplib::Server::HandlerResponse;
    if (const std::optional<Refusal> refusal = refusalOf(in, doorway)) {
      fail(out, refusal->status, std::string(refusal->why));
      return Handled::Handled;
    }
    if (const WebFile* file = fileAt(in.path); file != nullptr && in.method != "POST") {
      answerWith(out, file->type, file->bytes, file);
      return Handled::Handled;
    }
    return Handled::Unhandled;
  });
  route(server);
}

void Site::Inside::route(httplib::Server& server) {
  const auto onGet = [&](const char* path, auto requestFor) {
    server.Get(path, [this, requestFor](const httplib::Request& in, httplib::Response& out) {
      TeamworkRequest request;
      requestFor(in, request);
      showSheet(std::move(request), in, out);
    });
  };
  onGet("/api/board",
        [](const httplib::Request&, TeamworkRequest& request) { request.method = personLive; });
  onGet("/api/show", [](const httplib::Request& in, TeamworkRequest& request) {
    request.method = personShow;
    request.taskID = given(in, "what").value_or("?");
  });
  onGet("/api/find", [](const httplib::Request& in, TeamworkRequest& request) {
    request.method = personFind;
    request.body = given(in, "words");
  });
  onGet("/api/history", [](const httplib::Request& in, TeamworkRequest& request) {
    request.method = personHistory;
    request.status = "all";
    request.taskID = given(in, "task");
    if (const std::optional<std::string> since = given(in, "since"))
      request.holdMs = text::parseInteger(*since);
  });
  onGet("/api/helpers",
        [](const httplib::Request&, TeamworkRequest& request) { request.method = personHelpers; });
  server.Get("/api/moves",
             [this](const httplib::Request& in, httplib::Response& out) { streamMoves(in, out); });
  server.Post("/api/do", [this](const httplib::Request& in, httplib::Response& out) {
    carryOutDeed(in, out);
  });
  server.Post("/api/launch",
              [this](const httplib::Request& in, httplib::Response& out) { showLaunch(in, out); });
}

Site::Site(SiteSettings settings) : inside_(new Inside) {
  inside_->doorway.key = std::move(settings.key);
  inside_->ask = std::move(settings.ask);
  inside_->thread = std::move(settings.thread);
  inside_->around = std::move(settings.around);
  for (httplib::Server& server : inside_->servers) inside_->prepare(server);
}

Site::~Site() {
  inside_->isOver = true;
  for (httplib::Server& server : inside_->servers) server.stop();
  for (std::thread& thread : inside_->threads) thread.join();
}

int Site::bind(int port) {
  httplib::Server& server = inside_->servers[0];
  if (port == 0) {
    port = std::max(0, server.bind_to_any_port("127.0.0.1"));
  } else if (!server.bind_to_port("127.0.0.1", port)) {
    port = 0;
  }
  inside_->doorway.port = port;
  return port;
}

void Site::start() {
  const auto serve = [this](httplib::Server& server) {
    inside_->threads.emplace_back([&server] { server.listen_after_bind(); });
    // A server that is told to stop before it has begun would never end.
    for (int i = 0; i < 2000 && !server.is_running(); ++i)
      SteadyClock().sleepFor(std::chrono::milliseconds(1));
  };
  serve(inside_->servers[0]);
  // A machine may be without this address; the other one is what is printed.
  if (inside_->servers[1].bind_to_port("::1", inside_->doorway.port)) serve(inside_->servers[1]);
}

}  // namespace quillpost::board
