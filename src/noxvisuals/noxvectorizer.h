// noxvectorizer: replaces each frame by a drawing of itself.
#ifndef NOXVISUALS_NOXVECTORIZER_H_
#define NOXVISUALS_NOXVECTORIZER_H_

#include <glib-object.h>

// The GType of the element; registered on first use.
GType nox_vectorizer_get_type();

#endif  // NOXVISUALS_NOXVECTORIZER_H_
