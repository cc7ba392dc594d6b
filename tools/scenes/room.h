// Rooms for a pen to be drawn into, with what may be taken for one.
#ifndef SCENES_ROOM_H_
#define SCENES_ROOM_H_

#include <cstdint>
#include <string>
#include <vector>

#include "scenes/canvas.h"
#include "scenes/light.h"
#include "video/nox_video_frame.h"

namespace nox::scenes {

// The names of all rooms:
//   lit    grey walls and furniture in good light
//   white  a white wall on which luma is above 170
//   dim    little light, and in it a lamp, a glint on a bottle and a screen
//   icons  the same with a screen that shows white icons on blue
//   red    somebody in red with shining buttons, and a red car, both of which move
const std::vector<std::string> &room_names();

class Room {
 public:
  // At exposure 1 the room is as its name says. Throws std::invalid_argument for another name.
  Room(const std::string &name, int width, int height, float exposure, Range range);

  ~Room();
  Room(const Room &) = delete;
  Room &operator=(const Room &) = delete;

  // Frame `index` without the sensor's noise. The frame has the room's size.
  void render(std::uint32_t index, NoxVideoFrame *frame) const;

 private:
  bool moves_;  // so that each frame is drawn anew
  float exposure_;
  Range range_;
  Canvas still_;             // what does not move
  NoxVideoFrame picture_{};  // all of a room in which nothing moves
};

}  // namespace nox::scenes

#endif  // SCENES_ROOM_H_
