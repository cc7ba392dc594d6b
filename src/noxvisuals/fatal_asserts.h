// The elements' assertions are part of what they promise: caps that cannot be read and buffers that
// cannot be mapped end the process, in every build.
#ifndef NOXVISUALS_FATAL_ASSERTS_H_
#define NOXVISUALS_FATAL_ASSERTS_H_

#ifdef G_DISABLE_ASSERT
#error "G_DISABLE_ASSERT takes the elements' assertions away: build without it"
#endif

#endif  // NOXVISUALS_FATAL_ASSERTS_H_
