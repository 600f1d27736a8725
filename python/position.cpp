#include "python/position.h"

#include <cstddef>
#include <cstdint>

namespace sbd_python {

namespace {

struct POSITION {
  PyObject head;
  sbdc_position place;
};

PyTypeObject* g_position_type = nullptr;
FREE_LIST<POSITION> g_free_positions;

constexpr int k_position_size = 4;

const sbdc_position& place_of(PyObject* self) {
  return reinterpret_cast<POSITION*>(self)->place;
}

std::uint32_t part_of(PyObject* self, Py_ssize_t index) {
  const sbdc_position& place = place_of(self);
  const std::uint32_t parts[k_position_size] = {place.line, place.column, place.offset,
                                                place.length};
  return parts[index];
}

PyObject* new_position(PyTypeObject* type, PyObject* arguments, PyObject* keywords) {
  static char line[] = "line", column[] = "column", offset[] = "offset", length[] = "length";
  static char* names[] = {line, column, offset, length, nullptr};
  unsigned long parts[k_position_size];
  if (PyArg_ParseTupleAndKeywords(arguments, keywords, "kkkk:Position", names, &parts[0], &parts[1],
                                  &parts[2], &parts[3]) == 0) {
    return nullptr;
  }
  POSITION* const made = g_free_positions.make(type);
  if (made == nullptr) return nullptr;
  made->place.line = static_cast<std::uint32_t>(parts[0]);
  made->place.column = static_cast<std::uint32_t>(parts[1]);
  made->place.offset = static_cast<std::uint32_t>(parts[2]);
  made->place.length = static_cast<std::uint32_t>(parts[3]);
  return reinterpret_cast<PyObject*>(made);
}

void free_position(PyObject* self) {
  g_free_positions.free(self);
}

PyObject* as_tuple(PyObject* self) {
  return Py_BuildValue("(kkkk)", static_cast<unsigned long>(part_of(self, 0)),
                       static_cast<unsigned long>(part_of(self, 1)),
                       static_cast<unsigned long>(part_of(self, 2)),
                       static_cast<unsigned long>(part_of(self, 3)));
}

PyObject* show_position(PyObject* self) {
  return PyUnicode_FromFormat("Position(line=%u, column=%u, offset=%u, length=%u)",
                              part_of(self, 0), part_of(self, 1), part_of(self, 2),
                              part_of(self, 3));
}

Py_hash_t hash_position(PyObject* self) {
  PyObject* const parts = as_tuple(self);
  if (parts == nullptr) return -1;
  const Py_hash_t hash = PyObject_Hash(parts);
  Py_DECREF(parts);
  return hash;
}

// In the order of the file, and as tuples compare.
PyObject* compare_positions(PyObject* self, PyObject* other, int operation) {
  if (PyObject_TypeCheck(other, g_position_type) == 0) Py_RETURN_NOTIMPLEMENTED;
  int order = 0;
  for (int i = 0; i < k_position_size && order == 0; i++) {
    const std::uint32_t left = part_of(self, i);
    const std::uint32_t right = part_of(other, i);
    order = left < right ? -1 : left > right ? 1 : 0;
  }
  Py_RETURN_RICHCOMPARE(order, 0, operation);
}

Py_ssize_t size_of_position(PyObject*) {
  return k_position_size;
}

PyObject* iterate_position(PyObject* self) {
  PyObject* const parts = as_tuple(self);
  if (parts == nullptr) return nullptr;
  PyObject* const iterator = PyObject_GetIter(parts);
  Py_DECREF(parts);
  return iterator;
}

// By number or slice, as those of a tuple.
PyObject* position_part(PyObject* self, PyObject* key) {
  PyObject* const parts = as_tuple(self);
  if (parts == nullptr) return nullptr;
  PyObject* const part = PyObject_GetItem(parts, key);
  Py_DECREF(parts);
  return part;
}

PyObject* reduce_position(PyObject* self, PyObject*) {
  return Py_BuildValue("(ON)", reinterpret_cast<PyObject*>(Py_TYPE(self)), as_tuple(self));
}

constexpr Py_ssize_t offset_in_position(std::size_t member) noexcept {
  return static_cast<Py_ssize_t>(offsetof(POSITION, place) + member);
}

PyMemberDef g_position_members[] = {
    {"line", T_UINT, offset_in_position(offsetof(sbdc_position, line)), READONLY, "From 1 on."},
    {"column", T_UINT, offset_in_position(offsetof(sbdc_position, column)), READONLY,
     "From 1 on, in bytes."},
    {"offset", T_UINT, offset_in_position(offsetof(sbdc_position, offset)), READONLY,
     "From 0 on, in bytes."},
    {"length", T_UINT, offset_in_position(offsetof(sbdc_position, length)), READONLY, "In bytes."},
    {}};

PyObject* get_line(PyObject* self, void*) {
  return PyLong_FromUnsignedLong(place_of(self).line);
}

QUICK_ATTRIBUTE g_quick_of_position[] = {{"line", get_line, nullptr}};

PyObject* get_of_position(PyObject* self, PyObject* name) {
  return get_attribute(g_quick_of_position, self, name);
}

PyMethodDef g_position_methods[] = {
    {"__reduce__", reduce_position, METH_NOARGS, "For copies and pickles."}, {}};

PyType_Slot g_position_slots[] = {
    {Py_tp_doc, const_cast<char*>("Position(line, column, offset, length)\n--\n\n"
                                  "A place in the text of a file as it was read. May be taken "
                                  "apart like a tuple.")},
    {Py_tp_new, reinterpret_cast<void*>(new_position)},
    {Py_tp_dealloc, reinterpret_cast<void*>(free_position)},
    {Py_tp_repr, reinterpret_cast<void*>(show_position)},
    {Py_tp_hash, reinterpret_cast<void*>(hash_position)},
    {Py_tp_richcompare, reinterpret_cast<void*>(compare_positions)},
    {Py_sq_length, reinterpret_cast<void*>(size_of_position)},
    {Py_tp_iter, reinterpret_cast<void*>(iterate_position)},
    {Py_mp_subscript, reinterpret_cast<void*>(position_part)},
    {Py_tp_getattro, reinterpret_cast<void*>(get_of_position)},
    {Py_tp_members, g_position_members},
    {Py_tp_methods, g_position_methods},
    {0, nullptr}};

PyType_Spec g_position_spec = {"sbd.Position", sizeof(POSITION), 0, Py_TPFLAGS_DEFAULT,
                               g_position_slots};

}  // namespace

PyObject* make_position(const sbdc_position& place) {
  if (place.line == 0) Py_RETURN_NONE;
  POSITION* const made = g_free_positions.make(g_position_type);
  if (made != nullptr) made->place = place;
  return reinterpret_cast<PyObject*>(made);
}

bool add_position_type(PyObject* module) {
  return intern(g_quick_of_position) && make_type(g_position_type, g_position_spec) &&
         add_type(module, "Position", g_position_type);
}

}  // namespace sbd_python
