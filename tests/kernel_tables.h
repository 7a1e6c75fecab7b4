// The completed vector tables of a kernel family that this processor runs,
// each with the name of its instruction set, for the differential tests that
// hold every entry to the scalar table's.
#ifndef OSTREL_TESTS_KERNEL_TABLES_H
#define OSTREL_TESTS_KERNEL_TABLES_H

#include <utility>
#include <vector>

#include "frame/dispatch.h"

template <class Table>
std::vector<std::pair<const char *, const Table *>> VectorTablesOf(
    ostrel::frame::simd::Tables<Table> &byIsa) {
  std::vector<std::pair<const char *, const Table *>> tables;
  for (const auto &info : ostrel::frame::simd::RunnableIsas()) {
    if (info.isa != ostrel::frame::simd::Isa::kScalar) {
      tables.emplace_back(info.name, &ostrel::frame::simd::ForIsa(byIsa, info.isa));
    }
  }
  return tables;
}

#endif  // OSTREL_TESTS_KERNEL_TABLES_H
