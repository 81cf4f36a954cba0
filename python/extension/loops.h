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

// rows(number, x, task, y): what ufunc `number` does, in the order of their names in the module,
// for plain arrays: C-contiguous, aligned, of types that there is a loop for, without common
// memory, the last axis being transformed. A tenth of the cost of a ufunc call, which matters for
// small arrays. Returns whether it was so; else nothing is done.
PyObject* runRows(PyObject* module, PyObject* const* arguments, Py_ssize_t count);

}  // namespace orvgen::python
