#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <string_view>

namespace pxrom_python {

/// Bytes of a database as a str: bytes that are not UTF-8 survive in both directions (PEP 383).
inline pybind11::str ToStr(std::string_view bytes) {
  PyObject* const made =
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
  if (made == nullptr) throw pybind11::error_already_set();
  return pybind11::reinterpret_steal<pybind11::str>(made);
}

/// The reverse.
inline std::string ToBytes(const pybind11::str& text) {
  PyObject* const made = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
  if (made == nullptr) throw pybind11::error_already_set();
  const auto owned = pybind11::reinterpret_steal<pybind11::bytes>(made);
  return std::string(owned);
}

}  // namespace pxrom_python
