// Places in the text of a file as objects of Python.
#ifndef PYTHON_POSITION_H
#define PYTHON_POSITION_H

#include "capi/sbd_c.h"
#include "python/objects.h"

namespace sbd_python {

// Makes the type and enters it in the module. False with an exception of Python's.
bool add_position_type(PyObject* module);

// A new object; None for no place. Null with an exception of Python's.
PyObject* make_position(const sbdc_position& place);

}  // namespace sbd_python

#endif
