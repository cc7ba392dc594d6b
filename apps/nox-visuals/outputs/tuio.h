// The pressed pen as a cursor of TUIO 1.1.
#ifndef NOX_VISUALS_OUTPUTS_TUIO_H_
#define NOX_VISUALS_OUTPUTS_TUIO_H_

#include <cstdint>
#include <optional>
#include <string>

#include "nox-visuals/outputs/datagrams.h"
#include "nox-visuals/outputs/output.h"

namespace nox::app {

inline constexpr std::uint16_t kTuioPort = 3333;

// One bundle a datagram on /tuio/2Dcur: source, alive, set while there is a cursor, fseq. The
// cursor is alive only while the pen is pressed: receivers take each alive cursor for a touch, and
// a hovering one would drag whatever lies under it.
class Tuio : public Output {
 public:
  // Sends an empty bundle at once, which ends what an earlier run may have left alive.
  Tuio(const Address &to, const std::string &stream, std::int64_t started_unix_us, Say say);
  ~Tuio() override;

  void take(const Observation &observation) override;
  void tick(std::int64_t now_ns, const Totals &totals) override;
  void drain() override { datagrams_.check(); }
  std::uint64_t undelivered() const override { return datagrams_.undelivered(); }

 private:
  struct Cursor {
    std::uint64_t stroke = 0;
    std::int32_t session = 0;
    std::int64_t at_ns = 0;
    Point at;
    double velocity_x = 0;  // surfaces a second
    double velocity_y = 0;
    double acceleration = 0;  // of the speed, a second
  };

  void follow(const Pen &pen);
  void finish();
  void send_state();

  std::string source_;
  Datagrams datagrams_;
  std::optional<Cursor> cursor_;
  std::int32_t frame_;         // the next bundle's number
  std::int32_t next_session_;  // the next press's id
  std::optional<std::int64_t> repeat_ns_;
  bool finished_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_TUIO_H_
