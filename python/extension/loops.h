// SPDX-License-Identifier: MIT
// The private generalized ufuncs, one for each function of the package: (n),()->(m), the operands
// being the data and a packed Task. They are always called with `out`, whose length along the axis
// is that of the result.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

namespace orvgen::python {

// Adds them to the module; false with a Python exception.
bool addUfuncs(PyObject* module);

}  // namespace orvgen::python
