// Records to rows of their table, and back.
#pragma once

#include <sqlite3.h>

#include "store/arena.h"
#include "store/columns.h"

/// The number under which a key is stored: type times 2^32 plus index.
int64_t KeyNumber(const K7NavKey& key);
K7NavKey KeyOf(int64_t number);

/// Binds the notes and all columns of a record to the parameters from `first` on. The record stays as it is
/// until the statement was stepped.
bool BindRow(const TypeTable& table, const K7NavRec& rec, sqlite3_stmt* statement, int first);

/// The record of the current row, which has the columns of `ColumnList` from `first` on, with its texts in
/// the arena. Of what does not fit its place, by type or range, the nearest that does.
K7NavRec* ReadRow(const TypeTable& table, uint32_t idx, sqlite3_stmt* row, int first, Arena& arena);
