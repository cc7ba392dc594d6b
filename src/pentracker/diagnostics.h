// Prints what the tracker works on to standard output. Nothing calls these: a developer puts a call
// where it is needed while tuning.
#ifndef PENTRACKER_DIAGNOSTICS_H_
#define PENTRACKER_DIAGNOSTICS_H_

#include <cstdint>

#include "masks/bitmask.h"
#include "pentracker/blob_list.h"

// The mask as an array initialiser in source form, 32 pixels to a line.
void dump_mask(const BitMask *mask);

// The components of the last labelling with their pixels, those that the filter dropped too.
void dump_components(const BlobList *list);

// The blobs of the current frame.
void dump_blobs(const BlobList *list);

// The bits of a word, from the least significant, in groups of eight. The 128-bit word is 16 bytes
// in memory, as a vector register stores them; any alignment.
void dump_bits16(std::uint16_t word);
void dump_bits32(std::uint32_t word);
void dump_bits128(const void *word);

#endif  // PENTRACKER_DIAGNOSTICS_H_
