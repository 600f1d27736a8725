// The items of a listing as objects of Python.
//
// This part of the module is compiled since there are hundreds of thousands of them in a large
// file: an object is made when the loop comes to it, and what it has to say when it is asked. It
// keeps to the stable interface of Python, so that one wheel is for all of them.
#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

#include "capi/sbd_c.h"
#include "python/objects.h"
#include "python/position.h"

using sbd_python::add_position_type;
using sbd_python::add_type;
using sbd_python::FREE_LIST;
using sbd_python::get_attribute;
using sbd_python::intern;
using sbd_python::make_position;
using sbd_python::make_type;
using sbd_python::QUICK_ATTRIBUTE;

namespace {

// ---- Texts and values --------------------------------------------------------------------------

constexpr int k_kind_count = 12;
constexpr int k_unit_count = 6;
const char* const k_kinds[k_kind_count] = {
    "decimal", "octal", "hexadecimal", "binary",    "float", "boolean",
    "string",  "list",  "references",  "reference", "",      "word"};
const char* const k_units[k_unit_count] = {"", "K", "M", "G", "Hz", "MHz"};

PyObject* g_kinds[k_kind_count];
PyObject* g_units[k_unit_count];

PyObject* make_text(const char* text, std::size_t length) {
  return PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(length), "surrogateescape");
}

PyObject* make_text(const char* text) {
  return make_text(text, std::strlen(text));
}

PyObject* shared_text(PyObject* const* texts, int count, int index) {
  PyObject* const text = texts[index >= 0 && index < count ? index : 0];
  Py_INCREF(text);
  return text;
}

bool is_number(const sbdc_value& value) {
  return value.kind <= SBDC_FLOAT;
}

PyObject* make_scalar(const sbdc_value& value) {
  if (value.kind <= SBDC_BINARY) return PyLong_FromDouble(value.number);
  if (value.kind == SBDC_FLOAT) return PyFloat_FromDouble(value.number);
  if (value.kind == SBDC_BOOLEAN) return PyBool_FromLong(value.number != 0 ? 1 : 0);
  return make_text(value.text);
}

// Lists nest as deep as the file likes, so those that are met are noted, and filled one by one.
PyObject* make_list(const sbdc_listing* listing, const sbdc_value& value) {
  struct TO_FILL {
    PyObject* list;
    std::size_t first;
    std::size_t count;
  };
  PyObject* const outermost = PyList_New(0);
  if (outermost == nullptr) return nullptr;
  try {
    std::vector<TO_FILL> to_fill{{outermost, value.first_element, value.element_count}};
    while (!to_fill.empty()) {
      const TO_FILL filled = to_fill.back();
      to_fill.pop_back();
      for (std::size_t i = 0; i < filled.count; i++) {
        const sbdc_value& element = *sbdc_listing_element(listing, filled.first + i);
        const bool is_list = element.kind == SBDC_LIST;
        PyObject* const made = is_list ? PyList_New(0) : make_scalar(element);
        const bool is_good = made != nullptr && PyList_Append(filled.list, made) == 0;
        Py_XDECREF(made);  // The list around it has its own reference.
        if (!is_good) {
          Py_DECREF(outermost);
          return nullptr;
        }
        if (is_list) to_fill.push_back({made, element.first_element, element.element_count});
      }
    }
  } catch (const std::bad_alloc&) {
    Py_DECREF(outermost);
    return PyErr_NoMemory();
  }
  return outermost;
}

// ---- Items -------------------------------------------------------------------------------------

// Keeps a listing of the library for its items.
struct LISTING {
  PyObject head;
  sbdc_listing* listing;
};

struct ITEM {
  PyObject head;
  PyObject* name;  // Made at once: everybody asks for it, and Python finds it by itself this way.
  LISTING* owner;
  const sbdc_item* record;
};

FREE_LIST<ITEM> g_free_items;

PyTypeObject* g_listing_type = nullptr;
PyTypeObject* g_iterator_type = nullptr;
PyTypeObject* g_item_type = nullptr;
PyTypeObject* g_block_type = nullptr;
PyTypeObject* g_parameter_type = nullptr;
PyTypeObject* g_reference_type = nullptr;

const sbdc_item& record_of(PyObject* self) {
  return *reinterpret_cast<ITEM*>(self)->record;
}

const sbdc_listing* listing_of(PyObject* self) {
  return reinterpret_cast<ITEM*>(self)->owner->listing;
}

PyObject* refuse_new(PyTypeObject* type, PyObject*, PyObject*) {
  PyErr_Format(PyExc_TypeError, "%R is made by documents alone", reinterpret_cast<PyObject*>(type));
  return nullptr;
}

PyTypeObject* type_of(sbdc_item_kind kind) {
  if (kind == SBDC_BLOCK) return g_block_type;
  return kind == SBDC_PARAMETER ? g_parameter_type : g_reference_type;
}

PyObject* make_item(LISTING* owner, const sbdc_item* record) {
  PyObject* const name = make_text(record->name);
  if (name == nullptr) return nullptr;
  ITEM* const made = g_free_items.make(type_of(record->kind));
  if (made == nullptr) {
    Py_DECREF(name);
    return nullptr;
  }
  made->name = name;
  made->record = record;
  made->owner = owner;
  Py_INCREF(owner);
  return reinterpret_cast<PyObject*>(made);
}

void free_item(PyObject* self) {
  Py_DECREF(reinterpret_cast<ITEM*>(self)->name);
  Py_DECREF(reinterpret_cast<ITEM*>(self)->owner);
  g_free_items.free(self);
}

PyObject* show_item(PyObject* self) {
  PyObject* const type_name =
      PyObject_GetAttrString(reinterpret_cast<PyObject*>(Py_TYPE(self)), "__name__");
  if (type_name == nullptr) return nullptr;
  PyObject* const shown =
      PyUnicode_FromFormat("<%U %U>", type_name, reinterpret_cast<ITEM*>(self)->name);
  Py_DECREF(type_name);
  return shown;
}

PyObject* get_name(PyObject* self, void*) {
  PyObject* const name = reinterpret_cast<ITEM*>(self)->name;
  Py_INCREF(name);
  return name;
}

PyObject* get_own_name(PyObject* self, void*) {
  const char* const name = record_of(self).name;
  const char* const last_dot = std::strrchr(name, '.');
  return make_text(last_dot == nullptr ? name : last_dot + 1);
}

PyObject* get_depth(PyObject* self, void*) {
  return PyLong_FromUnsignedLong(record_of(self).depth);
}

PyObject* get_position(PyObject* self, void*) {
  return make_position(record_of(self).position);
}

PyObject* get_name_position(PyObject* self, void*) {
  return make_position(record_of(self).name_position);
}

QUICK_ATTRIBUTE g_quick_of_item[] = {{"name", get_name, nullptr},
                                     {"position", get_position, nullptr}};

PyObject* get_of_item(PyObject* self, PyObject* name) {
  return get_attribute(g_quick_of_item, self, name);
}

PyMemberDef g_item_members[] = {
    {"name", T_OBJECT_EX, offsetof(ITEM, name), READONLY, "The full name, spelled as declared."},
    {}};

PyGetSetDef g_item_properties[] = {
    {"own_name", get_own_name, nullptr, "The last part of the name.", nullptr},
    {"depth", get_depth, nullptr, "How many blocks are around it.", nullptr},
    {"position", get_position, nullptr,
     "Where it stands as a whole; None for what was edited since the file was read.", nullptr},
    {"name_position", get_name_position, nullptr, "Where its declared name stands.", nullptr},
    {}};

// ---- Blocks, parameters and references ---------------------------------------------------------

PyObject* get_type(PyObject* self, void*) {
  return make_text(record_of(self).type);
}

PyObject* get_value(PyObject* self, void*) {
  const sbdc_value& value = record_of(self).value;
  return value.kind == SBDC_LIST ? make_list(listing_of(self), value) : make_scalar(value);
}

QUICK_ATTRIBUTE g_quick_of_parameter[] = {{"value", get_value, nullptr},
                                          {"name", get_name, nullptr},
                                          {"position", get_position, nullptr}};

PyObject* get_of_parameter(PyObject* self, PyObject* name) {
  return get_attribute(g_quick_of_parameter, self, name);
}

PyObject* get_kind(PyObject* self, void*) {
  return shared_text(g_kinds, k_kind_count, record_of(self).value.kind);
}

PyObject* get_unit(PyObject* self, void*) {
  return shared_text(g_units, k_unit_count, record_of(self).value.unit);
}

PyObject* get_unscaled(PyObject* self, void*) {
  const sbdc_value& value = record_of(self).value;
  if (!is_number(value)) Py_RETURN_NONE;
  return PyFloat_FromDouble(value.unscaled);
}

PyObject* get_value_position(PyObject* self, void*) {
  return make_position(record_of(self).value.position);
}

bool put_attribute(PyObject* attributes, const sbdc_attribute& attribute) {
  PyObject* const key = make_text(attribute.key);
  PyObject* value = nullptr;
  if (attribute.value != nullptr) {
    value = make_text(attribute.value);
  } else {
    value = Py_None;
    Py_INCREF(value);
  }
  const bool is_good =
      key != nullptr && value != nullptr && PyDict_SetItem(attributes, key, value) == 0;
  Py_XDECREF(key);
  Py_XDECREF(value);
  return is_good;
}

PyObject* get_attributes(PyObject* self, void*) {
  const sbdc_item& record = record_of(self);
  PyObject* const attributes = PyDict_New();
  for (std::size_t i = 0; attributes != nullptr && i < record.attribute_count; i++) {
    const std::size_t index = record.first_attribute + i;
    if (!put_attribute(attributes, *sbdc_listing_attribute(listing_of(self), index))) {
      Py_DECREF(attributes);
      return nullptr;
    }
  }
  return attributes;
}

PyObject* make_names(PyObject* self, const char* sbdc_value::*text) {
  const sbdc_value& value = record_of(self).value;
  PyObject* const names = PyTuple_New(static_cast<Py_ssize_t>(value.element_count));
  for (std::size_t i = 0; names != nullptr && i < value.element_count; i++) {
    const sbdc_value& element = *sbdc_listing_element(listing_of(self), value.first_element + i);
    PyObject* const name = make_text(element.*text);
    if (name == nullptr || PyTuple_SetItem(names, static_cast<Py_ssize_t>(i), name) != 0) {
      Py_DECREF(names);
      return nullptr;
    }
  }
  return names;
}

PyObject* get_targets(PyObject* self, void*) {
  return make_names(self, &sbdc_value::target);
}

PyObject* get_written(PyObject* self, void*) {
  return make_names(self, &sbdc_value::text);
}

constexpr char k_value_position_doc[] = "Where the value stands, with its unit, quotes or braces.";

PyGetSetDef g_block_properties[] = {
    {"type", get_type, nullptr, "The type keyword as written, such as \"module\".", nullptr}, {}};

PyGetSetDef g_parameter_properties[] = {
    {"value", get_value, nullptr,
     "A number times its unit, a Boolean, a text without its quotes, or a list of these.", nullptr},
    {"kind", get_kind, nullptr,
     "How the value is written: \"decimal\", \"octal\", \"hexadecimal\", \"binary\", \"float\", "
     "\"boolean\", \"string\", \"word\" or \"list\".",
     nullptr},
    {"unit", get_unit, nullptr, "\"K\", \"M\", \"G\", \"Hz\", \"MHz\" or \"\".", nullptr},
    {"unscaled", get_unscaled, nullptr,
     "The number before its unit is applied; None for other values.", nullptr},
    {"attributes", get_attributes, nullptr,
     "Keys and values of the attributes; None for a bare key.", nullptr},
    {"value_position", get_value_position, nullptr, k_value_position_doc, nullptr},
    {}};

PyGetSetDef g_reference_properties[] = {
    {"targets", get_targets, nullptr, "The full names of what it refers to.", nullptr},
    {"written", get_written, nullptr, "The names as they stand in the file.", nullptr},
    {"value", get_targets, nullptr, "The same as ``targets``.", nullptr},
    {"value_position", get_value_position, nullptr, k_value_position_doc, nullptr},
    {}};

PyType_Slot g_item_slots[] = {
    {Py_tp_doc, const_cast<char*>("A block or a statement, as it was when it was listed: later "
                                  "edits do not change it.")},
    {Py_tp_new, reinterpret_cast<void*>(refuse_new)},
    {Py_tp_dealloc, reinterpret_cast<void*>(free_item)},
    {Py_tp_repr, reinterpret_cast<void*>(show_item)},
    {Py_tp_getattro, reinterpret_cast<void*>(get_of_item)},
    {Py_tp_members, g_item_members},
    {Py_tp_getset, g_item_properties},
    {0, nullptr}};
PyType_Slot g_block_slots[] = {{Py_tp_doc, const_cast<char*>("A block of the file.")},
                               {Py_tp_getset, g_block_properties},
                               {0, nullptr}};
PyType_Slot g_parameter_slots[] = {
    {Py_tp_doc, const_cast<char*>("An assignment: a parameter with its value.")},
    {Py_tp_getattro, reinterpret_cast<void*>(get_of_parameter)},
    {Py_tp_getset, g_parameter_properties},
    {0, nullptr}};
PyType_Slot g_reference_slots[] = {{Py_tp_doc, const_cast<char*>("A reference statement.")},
                                   {Py_tp_getset, g_reference_properties},
                                   {0, nullptr}};

PyType_Spec g_item_spec = {"sbd.Item", sizeof(ITEM), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE,
                           g_item_slots};
PyType_Spec g_block_spec = {"sbd.Block", sizeof(ITEM), 0, Py_TPFLAGS_DEFAULT, g_block_slots};
PyType_Spec g_parameter_spec = {"sbd.Parameter", sizeof(ITEM), 0, Py_TPFLAGS_DEFAULT,
                                g_parameter_slots};
PyType_Spec g_reference_spec = {"sbd.Reference", sizeof(ITEM), 0, Py_TPFLAGS_DEFAULT,
                                g_reference_slots};

// ---- Listings ----------------------------------------------------------------------------------

struct ITERATOR {
  PyObject head;
  LISTING* owner;
  const sbdc_item* next;
  const sbdc_item* end;
};

void free_listing(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  sbdc_listing_free(reinterpret_cast<LISTING*>(self)->listing);
  PyObject_Free(self);
  Py_DECREF(type);
}

PyType_Slot g_listing_slots[] = {{Py_tp_new, reinterpret_cast<void*>(refuse_new)},
                                 {Py_tp_dealloc, reinterpret_cast<void*>(free_listing)},
                                 {0, nullptr}};
PyType_Spec g_listing_spec = {"sbd._items.Listing", sizeof(LISTING), 0, Py_TPFLAGS_DEFAULT,
                              g_listing_slots};

PyObject* iterate_self(PyObject* self) {
  Py_INCREF(self);
  return self;
}

PyObject* next_item(PyObject* self) {
  auto* const iterator = reinterpret_cast<ITERATOR*>(self);
  if (iterator->next == iterator->end) return nullptr;
  return make_item(iterator->owner, iterator->next++);
}

void free_iterator(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  Py_DECREF(reinterpret_cast<ITERATOR*>(self)->owner);
  PyObject_Free(self);
  Py_DECREF(type);
}

PyType_Slot g_iterator_slots[] = {{Py_tp_new, reinterpret_cast<void*>(refuse_new)},
                                  {Py_tp_dealloc, reinterpret_cast<void*>(free_iterator)},
                                  {Py_tp_iter, reinterpret_cast<void*>(iterate_self)},
                                  {Py_tp_iternext, reinterpret_cast<void*>(next_item)},
                                  {0, nullptr}};
PyType_Spec g_iterator_spec = {"sbd._items.Iterator", sizeof(ITERATOR), 0, Py_TPFLAGS_DEFAULT,
                               g_iterator_slots};

PyObject* items_of(PyObject*, PyObject* address) {
  auto* const listing = static_cast<sbdc_listing*>(PyLong_AsVoidPtr(address));
  if (listing == nullptr) {
    if (PyErr_Occurred() == nullptr) PyErr_SetString(PyExc_ValueError, "not a listing");
    return nullptr;
  }
  LISTING* const owner = PyObject_New(LISTING, g_listing_type);
  if (owner == nullptr) {
    sbdc_listing_free(listing);
    return nullptr;
  }
  owner->listing = listing;
  ITERATOR* const iterator = PyObject_New(ITERATOR, g_iterator_type);
  if (iterator == nullptr) {
    Py_DECREF(owner);
    return nullptr;
  }
  iterator->owner = owner;
  iterator->next = sbdc_listing_item(listing, 0);
  iterator->end = iterator->next + sbdc_listing_size(listing);
  return reinterpret_cast<PyObject*>(iterator);
}

// ---- The module --------------------------------------------------------------------------------

bool make_texts(PyObject** made, const char* const* texts, int count) {
  for (int i = 0; i < count; i++) {
    made[i] = PyUnicode_InternFromString(texts[i]);
    if (made[i] == nullptr) return false;
  }
  return true;
}

bool make_types() {
  return make_type(g_listing_type, g_listing_spec) && make_type(g_iterator_type, g_iterator_spec) &&
         make_type(g_item_type, g_item_spec) &&
         make_type(g_block_type, g_block_spec, g_item_type) &&
         make_type(g_parameter_type, g_parameter_spec, g_item_type) &&
         make_type(g_reference_type, g_reference_spec, g_item_type);
}

bool fill_module(PyObject* module) {
  return make_texts(g_kinds, k_kinds, k_kind_count) && make_texts(g_units, k_units, k_unit_count) &&
         intern(g_quick_of_item) && intern(g_quick_of_parameter) && make_types() &&
         add_position_type(module) && add_type(module, "Item", g_item_type) &&
         add_type(module, "Block", g_block_type) &&
         add_type(module, "Parameter", g_parameter_type) &&
         add_type(module, "Reference", g_reference_type);
}

PyMethodDef g_functions[] = {
    {"items_of", items_of, METH_O,
     "items_of(listing, /)\n--\n\n"
     "The items of the listing at an address, which is freed with the last of them."},
    {}};

PyModuleDef g_module = {PyModuleDef_HEAD_INIT,
                        "sbd._items",
                        "The items of a listing.",
                        -1,  // What is above is made once.
                        g_functions,
                        nullptr,
                        nullptr,
                        nullptr,
                        nullptr};

}  // namespace

PyMODINIT_FUNC PyInit__items() {
  PyObject* const module = PyModule_Create(&g_module);
  if (module == nullptr) return nullptr;
  if (fill_module(module)) return module;
  Py_DECREF(module);
  return nullptr;
}
