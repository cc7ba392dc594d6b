#include "nox-visuals/outputs/metrics.h"

#include <libsoup/soup.h>

#include <thread>
#include <utility>

#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/outputs/resolve.h"

namespace nox::app {

class Metrics::Server {
 public:
  Server(const Address &listen, std::function<std::string()> page);
  ~Server();
  Server(const Server &) = delete;
  Server &operator=(const Server &) = delete;

 private:
  void answer(SoupServerMessage *message, const char *path) const;

  std::function<std::string()> page_;
  std::unique_ptr<GMainContext, void (*)(GMainContext *)> context_{g_main_context_new(),
                                                                   g_main_context_unref};
  std::unique_ptr<GMainLoop, void (*)(GMainLoop *)> loop_{g_main_loop_new(context_.get(), FALSE),
                                                          g_main_loop_unref};
  std::unique_ptr<SoupServer, void (*)(gpointer)> server_{nullptr, g_object_unref};
  std::thread thread_;
};

// What the server starts belongs to the context that is the default of the thread that starts it.
Metrics::Server::Server(const Address &listen, std::function<std::string()> page)
    : page_(std::move(page)) {
  const SocketAddress where = resolve(listen);
  std::unique_ptr<GSocketAddress, void (*)(gpointer)> address(
      g_socket_address_new_from_native(const_cast<sockaddr *>(where.get()), where.length),
      g_object_unref);
  g_main_context_push_thread_default(context_.get());
  server_.reset(soup_server_new("server-header", "nox-visuals ", nullptr));
  soup_server_add_handler(
      server_.get(), nullptr,
      [](SoupServer *, SoupServerMessage *message, const char *path, GHashTable *, gpointer self) {
        static_cast<Server *>(self)->answer(message, path);
      },
      this, nullptr);
  GError *error = nullptr;
  const bool listens =
      soup_server_listen(server_.get(), address.get(), SoupServerListenOptions{}, &error) != FALSE;
  g_main_context_pop_thread_default(context_.get());
  if (!listens) {
    const std::string why = error->message;
    g_error_free(error);
    throw OutputError(why);
  }
  thread_ = std::thread([this] {
    g_main_context_push_thread_default(context_.get());
    g_main_loop_run(loop_.get());
    soup_server_disconnect(server_.get());
    g_main_context_pop_thread_default(context_.get());
  });
}

Metrics::Server::~Server() {
  if (!thread_.joinable()) return;
  // From inside the loop: one that does not run yet cannot be told to stop.
  GSource *stop = g_idle_source_new();
  g_source_set_callback(
      stop,
      [](gpointer loop) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop *>(loop));
        return G_SOURCE_REMOVE;
      },
      loop_.get(), nullptr);
  g_source_attach(stop, context_.get());
  g_source_unref(stop);
  thread_.join();
}

void Metrics::Server::answer(SoupServerMessage *message, const char *path) const {
  const std::string method = soup_server_message_get_method(message);
  if (std::string(path) != "/metrics") {
    soup_server_message_set_status(message, SOUP_STATUS_NOT_FOUND, nullptr);
    return;
  }
  if (method != "GET" && method != "HEAD") {
    soup_server_message_set_status(message, SOUP_STATUS_METHOD_NOT_ALLOWED, nullptr);
    return;
  }
  const std::string page = page_();
  soup_server_message_set_status(message, SOUP_STATUS_OK, nullptr);
  soup_server_message_set_response(message, "text/plain; version=0.0.4; charset=utf-8",
                                   SOUP_MEMORY_COPY, page.data(), page.size());
}

Metrics::Metrics(const Address &listen, const std::string &stream,
                 std::function<std::int64_t()> now_ns)
    : stream_(stream), now_ns_(std::move(now_ns)) {
  try {
    server_ = std::make_unique<Server>(listen, [this] { return page(); });
  } catch (const OutputError &error) {
    throw OutputError("--metrics " + to_string(listen) + ": " + error.what());
  }
}

Metrics::~Metrics() = default;

void Metrics::take(const Observation &observation) {
  const std::lock_guard lock(mutex_);
  if (const auto *end = std::get_if<End>(&observation)) {
    totals_ = end->totals;
    return;
  }
  const Moment &when =
      std::visit([](const auto &it) -> const Moment & { return it.when; }, observation);
  latency_.add(now_ns_() - when.entered_ns);
}

void Metrics::tick(std::int64_t /*now_ns*/, const Totals &totals) {
  const std::lock_guard lock(mutex_);
  totals_ = totals;
}

std::string Metrics::page() const {
  const std::lock_guard lock(mutex_);
  return metrics_page(stream_, totals_, latency_);
}

}  // namespace nox::app
