// Compares the blobs of a list with those of the plain reference, field by field.
#ifndef PENTRACKER_BLOB_COMPARE_H_
#define PENTRACKER_BLOB_COMPARE_H_

#include <string>

#include "pentracker/blob_list.h"
#include "pentracker/blob_list_plain.h"

namespace nox::test {

// Empty when the current frame of both holds the same blobs: pixels in the same order, every number
// the same to the last bit, links to the same blobs. Else what differs, in words.
std::string blob_differences(const BlobList *list, const PlainBlobList &plain);

}  // namespace nox::test

#endif  // PENTRACKER_BLOB_COMPARE_H_
