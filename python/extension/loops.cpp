// SPDX-License-Identifier: MIT
#include "loops.h"

#define NPY_NO_DEPRECATED_API NPY_1_22_API_VERSION
#include <numpy/arrayobject.h>
#include <numpy/ufuncobject.h>
#include <xmmintrin.h>

#include <exception>
#include <iterator>
#include <new>

#include "fourier.h"
#include "real.h"

namespace orvgen::python {
namespace {

// Fewer results are written sooner than the lock is given up and taken again.
constexpr npy_intp kWorthUnlocking = 1024;

// Called without the GIL; NumPy looks for an exception behind the loop.
void raise(PyObject* type, const char* text) {
    const PyGILState_STATE state = PyGILState_Ensure();
    PyErr_SetString(type, text);
    PyGILState_Release(state);
}

// NumPy would make warnings of the exceptions that transforms raise, overflows among them; as in
// SciPy there are none.
void clearFlags() { _mm_setcsr(_mm_getcsr() & ~0x3fU); }

// (n),()->(m): operands src, task, dst; steps of the three between transforms, then those of src
// and dst within one.
template <class K>
void loop(char** args, const npy_intp* dimensions, const npy_intp* steps, void*) {
    const bool one = dimensions[0] == 1;  // the distance then means nothing
    const Job job{.src = {args[0], steps[3], one ? 0 : steps[0]},
                  .dst = {args[2], steps[4], one ? 0 : steps[2]},
                  .have = dimensions[1],
                  .room = dimensions[2],
                  .count = dimensions[0],
                  .task = Task::unpacked(*reinterpret_cast<const npy_int64*>(args[1]))};
    if (job.count == 0) return;
    try {
        if (const OrvStatus status = run<K>(job); status != orvOk)
            raise(PyExc_ValueError, orvgBatchStatusText(status));
    } catch (const std::bad_alloc&) {
        raise(PyExc_MemoryError, "no memory for a plan or a scratch");
    } catch (const std::exception& e) {
        raise(PyExc_RuntimeError, e.what());
    }
    clearFlags();
}

struct Loop {
    PyUFuncGenericFunction function;
    char src, dst;  // types of NumPy
};

constexpr char f = NPY_FLOAT, d = NPY_DOUBLE, F = NPY_CFLOAT, D = NPY_CDOUBLE;
constexpr Direction forward = Direction::Forward, inverse = Direction::Inverse;

// NumPy keeps pointers to what a ufunc is made of.
struct Definition {
    const char* name;
    const char* doc;
    int count;
    Loop loops[4];
    PyUFuncGenericFunction functions[4] = {};
    char types[12] = {};
    void* data[4] = {};
};

// NumPy takes the first loop that the types can be cast to: real ones come first.
Definition definitions[] = {
    {"fft",
     "complex or real to complex",
     4,
     {{loop<RealFull<Orv32f, forward>>, f, F},
      {loop<RealFull<Orv64f, forward>>, d, D},
      {loop<ComplexFourier<Orv32f, forward>>, F, F},
      {loop<ComplexFourier<Orv64f, forward>>, D, D}}},
    {"ifft",
     "complex or real to complex",
     4,
     {{loop<RealFull<Orv32f, inverse>>, f, F},
      {loop<RealFull<Orv64f, inverse>>, d, D},
      {loop<ComplexFourier<Orv32f, inverse>>, F, F},
      {loop<ComplexFourier<Orv64f, inverse>>, D, D}}},
    {"rfft",
     "real to half spectrum",
     2,
     {{loop<RealForward<Orv32f>>, f, F}, {loop<RealForward<Orv64f>>, d, D}}},
    {"irfft",
     "half spectrum to real",
     2,
     {{loop<RealInverse<Orv32f>>, F, f}, {loop<RealInverse<Orv64f>>, D, d}}},
    {"hfft",
     "conjugate of a half spectrum to real",
     2,
     {{loop<RealInverseConjugate<Orv32f>>, F, f}, {loop<RealInverseConjugate<Orv64f>>, D, d}}},
    {"ihfft",
     "real to the conjugate of the half spectrum",
     2,
     {{loop<RealForwardConjugate<Orv32f>>, f, F}, {loop<RealForwardConjugate<Orv64f>>, d, D}}},
    {"dht", "Hartley", 2, {{loop<HartleyKind<Orv32f>>, f, f}, {loop<HartleyKind<Orv64f>>, d, d}}},
    {"wht",
     "Walsh-Hadamard",
     2,
     {{loop<HadamardKind<Orv32f>>, f, f}, {loop<HadamardKind<Orv64f>>, d, d}}},
    {"dct4", "DCT-IV", 2, {{loop<CosineKind<Orv32f>>, f, f}, {loop<CosineKind<Orv64f>>, d, d}}},
    {"rotate",
     "rotation",
     2,
     {{loop<RotationKind<Orv32f>>, f, f}, {loop<RotationKind<Orv64f>>, d, d}}},
};

PyObject* makeUfunc(Definition& u) {
    for (int i = 0; i < u.count; ++i) {
        u.functions[i] = u.loops[i].function;
        u.types[3 * i] = u.loops[i].src;
        u.types[3 * i + 1] = NPY_INT64;
        u.types[3 * i + 2] = u.loops[i].dst;
    }
    return PyUFunc_FromFuncAndDataAndSignature(u.functions, u.data, u.types, u.count, 2, 1,
                                               PyUFunc_None, u.name, u.doc, 0, "(n),()->(m)");
}

// The loop of a definition for arrays of just its types, if there is one.
PyUFuncGenericFunction loopFor(const Definition& u, int src, int dst) {
    for (int i = 0; i < u.count; ++i)
        if (u.loops[i].src == src && u.loops[i].dst == dst) return u.loops[i].function;
    return nullptr;
}

PyArrayObject* plain(PyObject* object) {
    if (!PyArray_CheckExact(object)) return nullptr;
    auto* array = reinterpret_cast<PyArrayObject*>(object);
    return PyArray_ISCARRAY_RO(array) ? array : nullptr;
}

bool overlap(PyArrayObject* x, PyArrayObject* y) {
    const char *a = PyArray_BYTES(x), *b = PyArray_BYTES(y);
    return a < b + PyArray_NBYTES(y) && b < a + PyArray_NBYTES(x);
}

}  // namespace

PyObject* runRows(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
    if (count != 4) {
        PyErr_SetString(PyExc_TypeError, "rows(number, x, task, y)");
        return nullptr;
    }
    const long number = PyLong_AsLong(arguments[0]);
    if (number == -1 && PyErr_Occurred()) return nullptr;
    PyArrayObject *x = plain(arguments[1]), *y = plain(arguments[3]);
    if (number < 0 || number >= static_cast<long>(std::size(definitions)) || !x || !y ||
        PyArray_NDIM(x) == 0 || PyArray_NDIM(y) == 0 || !PyArray_ISWRITEABLE(y))
        Py_RETURN_FALSE;
    PyArrayObject* task = plain(arguments[2]);
    const PyUFuncGenericFunction function =
        loopFor(definitions[number], PyArray_TYPE(x), PyArray_TYPE(y));
    const npy_intp have = PyArray_DIM(x, PyArray_NDIM(x) - 1),
                   room = PyArray_DIM(y, PyArray_NDIM(y) - 1);
    if (!function || !task || PyArray_TYPE(task) != NPY_INT64 || PyArray_SIZE(task) != 1 ||
        have == 0 || room == 0)
        Py_RETURN_FALSE;
    const npy_intp rows = PyArray_SIZE(y) / room;
    if (rows * have != PyArray_SIZE(x) || overlap(x, y)) Py_RETURN_FALSE;

    char* args[] = {PyArray_BYTES(x), PyArray_BYTES(task), PyArray_BYTES(y)};
    const npy_intp dimensions[] = {rows, have, room}, size = PyArray_ITEMSIZE(x),
                   written = PyArray_ITEMSIZE(y),
                   steps[] = {have * size, 0, room * written, size, written};
    if (PyArray_SIZE(y) < kWorthUnlocking) {
        function(args, dimensions, steps, nullptr);
    } else {
        NPY_BEGIN_THREADS_DEF;
        NPY_BEGIN_THREADS;
        function(args, dimensions, steps, nullptr);
        NPY_END_THREADS;
    }
    if (PyErr_Occurred()) return nullptr;
    Py_RETURN_TRUE;
}

bool addUfuncs(PyObject* module) {
    import_array1(false);
    import_umath1(false);
    for (Definition& definition : definitions) {
        PyObject* ufunc = makeUfunc(definition);
        if (!ufunc) return false;
        const int failed = PyModule_AddObjectRef(module, definition.name, ufunc);
        Py_DECREF(ufunc);
        if (failed) return false;
    }
    return true;
}

}  // namespace orvgen::python
