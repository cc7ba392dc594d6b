// The module with the elements that the program is around.
#ifndef NOX_VISUALS_STREAM_MODULE_H_
#define NOX_VISUALS_STREAM_MODULE_H_

namespace nox::app {

// Makes the elements known: where GStreamer does not know them already, the module that was built
// or installed with this program is loaded. Whether they are known is for who uses them to see.
void find_module();

// Throws StreamError, with what can be done, when they are not known.
void demand_module();

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_MODULE_H_
