// What the compiled types of the module have in common.
#ifndef PYTHON_OBJECTS_H
#define PYTHON_OBJECTS_H

#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <structmember.h>

#include <cstddef>

namespace sbd_python {

// ---- Attributes that loops ask for -------------------------------------------------------------

// Python takes longer to find a property than the property takes. The names of those that are asked
// for again and again are compared first: names in programs are interned, so a pointer tells.
struct QUICK_ATTRIBUTE {
  const char* name;
  getter get;
  PyObject* interned;
};

template <std::size_t COUNT>
bool intern(QUICK_ATTRIBUTE (&attributes)[COUNT]) {
  for (QUICK_ATTRIBUTE& attribute : attributes) {
    attribute.interned = PyUnicode_InternFromString(attribute.name);
    if (attribute.interned == nullptr) return false;
  }
  return true;
}

template <std::size_t COUNT>
PyObject* get_attribute(const QUICK_ATTRIBUTE (&attributes)[COUNT], PyObject* self,
                        PyObject* name) {
  for (const QUICK_ATTRIBUTE& attribute : attributes) {
    if (attribute.interned == name) return attribute.get(self, nullptr);
  }
  return PyObject_GenericGetAttr(self, name);
}

// ---- Memory ------------------------------------------------------------------------------------

// A loop makes an object and drops the one before: the same few pieces of memory serve all of them.
// (The lock of the interpreter is held by whoever makes or frees an object.)
template <class OBJECT>
class FREE_LIST {
 public:
  OBJECT* make(PyTypeObject* type) {
    if (m_size == 0) return PyObject_New(OBJECT, type);
    return reinterpret_cast<OBJECT*>(PyObject_Init(m_free[--m_size], type));
  }

  void free(PyObject* object) {
    PyTypeObject* const type = Py_TYPE(object);
    if (m_size < k_capacity) {
      m_free[m_size++] = object;
    } else {
      PyObject_Free(object);
    }
    Py_DECREF(type);
  }

 private:
  static constexpr std::size_t k_capacity = 8;
  PyObject* m_free[k_capacity] = {};
  std::size_t m_size = 0;
};

// ---- Types -------------------------------------------------------------------------------------

inline bool make_type(PyTypeObject*& type, PyType_Spec& spec, PyTypeObject* base = nullptr) {
  PyObject* const bases = base != nullptr ? PyTuple_Pack(1, base) : nullptr;
  if (base != nullptr && bases == nullptr) return false;
  type = reinterpret_cast<PyTypeObject*>(PyType_FromSpecWithBases(&spec, bases));
  Py_XDECREF(bases);
  return type != nullptr;
}

// The module takes over a reference of its own.
inline bool add_type(PyObject* module, const char* name, PyTypeObject* type) {
  auto* const object = reinterpret_cast<PyObject*>(type);
  Py_INCREF(object);
  if (PyModule_AddObject(module, name, object) == 0) return true;
  Py_DECREF(object);
  return false;
}

}  // namespace sbd_python

#endif
