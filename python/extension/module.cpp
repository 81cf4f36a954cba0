// SPDX-License-Identifier: MIT
// The extension module orvgen._batch: the ufuncs, and what there is to know of the libraries.
#include <dlfcn.h>
#include <orvgen_batch.h>

#include <cstdint>

#include "loops.h"

namespace {

PyObject* targets(PyObject*, PyObject*) { return PyLong_FromUnsignedLong(orvgBatchTargets()); }

PyObject* use(PyObject*, PyObject* argument) {
    const unsigned long target = PyLong_AsUnsignedLong(argument);
    if (PyErr_Occurred()) return nullptr;
    const bool fits = target <= 0xff;
    if (!fits || orvgBatchUse(static_cast<std::uint32_t>(target)) != orvOk) {
        PyErr_SetString(PyExc_ValueError, "not among the targets");
        return nullptr;
    }
    Py_RETURN_NONE;
}

// The file that a function was loaded from.
const char* fileOf(const void* function) {
    Dl_info info{};
    return dladdr(function, &info) != 0 && info.dli_fname ? info.dli_fname : "";
}

PyObject* libraries(PyObject*, PyObject*) {
    const OrvLibraryVersion* v = orvgenGetLibVersion();
    return Py_BuildValue("{s:s,s:s,s:s,s:s}", "release", ORVGEN_VERSION_TEXT, "kernels",
                         fileOf(reinterpret_cast<const void*>(orvgenGetLibVersion)), "batch",
                         fileOf(reinterpret_cast<const void*>(orvgBatchTargets)), "interface",
                         v->versionText);
}

PyMethodDef methods[] = {
    {"targets", targets, METH_NOARGS, "The targets there are, as a sum."},
    {"use", use, METH_O, "Chooses a target, or 0 for the best."},
    {"libraries", libraries, METH_NOARGS, "Files and versions of the libraries."},
    {"rows", reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(orvgen::python::runRows)),
     METH_FASTCALL, "Runs a ufunc on plain arrays, or returns False."},
    {nullptr, nullptr, 0, nullptr}};

PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                          "orvgen._batch",
                          "Ufuncs over the batch library; private to the package.",
                          -1,
                          methods,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr};

}  // namespace

PyMODINIT_FUNC PyInit__batch() {
    PyObject* module = PyModule_Create(&definition);
    if (!module) return nullptr;
    if (!orvgen::python::addUfuncs(module)) {
        Py_DECREF(module);
        return nullptr;
    }
    return module;
}
