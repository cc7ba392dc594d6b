// noxqrdec: logs the payloads of the QR codes that it sees.
#ifndef NOXVISUALS_NOXQRDEC_H_
#define NOXVISUALS_NOXQRDEC_H_

#include <glib-object.h>

// The GType of the element; registered on first use.
GType nox_qr_dec_get_type();

#endif  // NOXVISUALS_NOXQRDEC_H_
