#include "nox-visuals/outputs/mqtt_connection.h"

#include <mosquitto.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <utility>

#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/outputs/resolve.h"

namespace nox::app {
namespace {

using std::chrono::milliseconds;

constexpr int kKeepAliveSeconds = 15;
constexpr int kLoopMs = 100;
constexpr int kBrokerUnavailable = 3;  // the one refusal of MQTT 3.1.1 that passes by itself
constexpr milliseconds kFirstPause{250};
constexpr milliseconds kLongestPause{16'000};
constexpr milliseconds kGoodbye{1'000};

std::string describe(int error, int system_error) {
  if (error == MOSQ_ERR_ERRNO) return std::strerror(system_error);
  if (error == MOSQ_ERR_EAI) return "its name does not resolve";
  if (error == MOSQ_ERR_TLS) return "TLS failed; is the certificate of a known authority?";
  return mosquitto_strerror(error);
}

}  // namespace

// Outlives the connection when the system's resolver, or a machine that does not answer, holds the
// thread.
struct MqttConnection::Shared {
  MqttBroker broker;
  mosquitto *client = nullptr;

  std::mutex mutex;
  std::condition_variable changed;
  std::vector<MqttEvent> events;
  bool leaving = false;    // goodbye was said: no new attempts
  bool abandoned = false;  // goodbye took too long
  bool ended = false;

  std::optional<int> last_answer;  // of the broker in this attempt; of the loop's thread only

  explicit Shared(const MqttBroker &to) : broker(to) {
    static const int initialized = mosquitto_lib_init();
    client = initialized == MOSQ_ERR_SUCCESS ? mosquitto_new(nullptr, true, this) : nullptr;
    if (client == nullptr) throw OutputError("the MQTT library cannot be started");
  }
  ~Shared() { mosquitto_destroy(client); }
  Shared(const Shared &) = delete;
  Shared &operator=(const Shared &) = delete;

  void set_up(const MqttMessage &will);
  void set_up_tls();
  void add(MqttEvent event);
  void run();
  void on_answer(int answer);
  bool attempt();
  bool is_abandoned();
  bool pause(milliseconds time);
};

void MqttConnection::Shared::set_up(const MqttMessage &will) {
  mosquitto_threaded_set(client, true);
  mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1);
  // Who publishes bounds what is under way.
  mosquitto_max_inflight_messages_set(client, 0);
  mosquitto_will_set(client, will.topic.c_str(), static_cast<int>(will.payload.size()),
                     will.payload.data(), will.qos, will.retain);
  if (!broker.user.empty()) {
    mosquitto_username_pw_set(client, broker.user.c_str(), broker.password.c_str());
  }
  if (broker.tls) set_up_tls();
  mosquitto_connect_callback_set(client, [](mosquitto *, void *self, int answer) {
    static_cast<Shared *>(self)->on_answer(answer);
  });
  mosquitto_publish_callback_set(client, [](mosquitto *, void *self, int message) {
    static_cast<Shared *>(self)->add({MqttEvent::kDelivered, message, {}});
  });
}

void MqttConnection::Shared::set_up_tls() {
  const auto path = [](const std::string &file) { return file.empty() ? nullptr : file.c_str(); };
  int error = MOSQ_ERR_SUCCESS;
  if (broker.ca_file.empty() && broker.cert_file.empty()) {
    error = mosquitto_int_option(client, MOSQ_OPT_TLS_USE_OS_CERTS, 1);
  } else {
    error = mosquitto_tls_set(client, path(broker.ca_file),
                              broker.ca_file.empty() ? "/etc/ssl/certs" : nullptr,
                              path(broker.cert_file), path(broker.key_file), nullptr);
  }
  if (error != MOSQ_ERR_SUCCESS) {
    throw OutputError(
        "TLS cannot be set up: the authority, certificate or key file cannot be used");
  }
}

void MqttConnection::Shared::add(MqttEvent event) {
  const std::lock_guard lock(mutex);
  events.push_back(std::move(event));
  changed.notify_all();
}

// The library's own loop of reconnections ends for good after some errors (TLS, a name server that
// does not answer), which a stream of months cannot use.
void MqttConnection::Shared::run() {
  milliseconds time = kFirstPause;
  do {
    time = attempt() ? kFirstPause : std::min(2 * time, kLongestPause);
  } while (pause(time));
  const std::lock_guard lock(mutex);
  ended = true;
  changed.notify_all();
}

void MqttConnection::Shared::on_answer(int answer) {
  last_answer = answer;
  if (answer == 0) add({MqttEvent::kConnected, 0, {}});
}

// Returns after the connection has ended, or could not be made; whether there was one.
bool MqttConnection::Shared::attempt() {
  last_answer.reset();
  // Not the variant that does not wait: over TLS it does not notice that nobody is there.
  int error = mosquitto_connect(client, broker.address.host.c_str(), broker.address.port,
                                kKeepAliveSeconds);
  while (error == MOSQ_ERR_SUCCESS && !is_abandoned()) error = mosquitto_loop(client, kLoopMs, 1);
  const int system_error = errno;
  // What the library says of TLS that fails behind its first look at it.
  if (broker.tls && error == MOSQ_ERR_ERRNO && system_error == EPROTO) error = MOSQ_ERR_TLS;
  if (last_answer.value_or(0) != 0) {
    add({*last_answer == kBrokerUnavailable ? MqttEvent::kGone : MqttEvent::kRefused, 0,
         mosquitto_connack_string(*last_answer)});
  } else {
    add({error == MOSQ_ERR_TLS ? MqttEvent::kRefused : MqttEvent::kGone, 0,
         describe(error, system_error)});
  }
  return last_answer == 0;
}

bool MqttConnection::Shared::is_abandoned() {
  const std::lock_guard lock(mutex);
  return abandoned;
}

// False when it is time to end.
bool MqttConnection::Shared::pause(milliseconds time) {
  std::unique_lock lock(mutex);
  return !changed.wait_for(lock, time, [this] { return leaving; });
}

MqttConnection::MqttConnection(const MqttBroker &broker, const MqttMessage &will)
    : shared_(std::make_shared<Shared>(broker)) {
  // The library looks the name up again, in its thread; here it shows whether that can work at all.
  resolve(broker.address);
  shared_->set_up(will);
  thread_ = std::thread([shared = shared_] { shared->run(); });
}

MqttConnection::~MqttConnection() {
  mosquitto_disconnect(shared_->client);
  std::unique_lock lock(shared_->mutex);
  shared_->leaving = true;
  shared_->changed.notify_all();
  const auto ended = [this] { return shared_->ended; };
  if (!shared_->changed.wait_for(lock, kGoodbye, ended)) {
    shared_->abandoned = true;
    shared_->changed.wait_for(lock, milliseconds(2 * kLoopMs), ended);
  }
  const bool joinable = shared_->ended;
  lock.unlock();
  if (joinable) {
    thread_.join();
  } else {
    thread_.detach();
  }
}

std::vector<MqttEvent> MqttConnection::events(milliseconds patience) {
  std::unique_lock lock(shared_->mutex);
  shared_->changed.wait_for(lock, patience, [this] { return !shared_->events.empty(); });
  return std::exchange(shared_->events, {});
}

std::optional<int> MqttConnection::publish(const MqttMessage &message) {
  int number = 0;
  const int error = mosquitto_publish(shared_->client, &number, message.topic.c_str(),
                                      static_cast<int>(message.payload.size()),
                                      message.payload.data(), message.qos, message.retain);
  // Without a connection the library keeps a message of QoS 1 all the same.
  if (error == MOSQ_ERR_SUCCESS || (error == MOSQ_ERR_NO_CONN && message.qos > 0)) return number;
  return std::nullopt;
}

}  // namespace nox::app
