// K7ShapeTable: the records of a shape layer. K7ShapeQuery: those that an area query found.
#pragma once

#include <k7/export.h>
#include <k7/geometry/shape_attrib.h>
#include <k7/projection/chart_rect.h>

class K7ShapeRec;

/// Says by a candidate's bounds, in degrees, whether it is wanted: not 0 to include it. Bounds whose east is
/// below their west run across 180.
using K7ShapeInclusionTest = unsigned char (*)(void* context, double north, double south, double east,
                                               double west);

/// A K7ShapeQuery hands out the records that it was made with, in no order, each once. It lives no longer
/// than its table.
class K7_API K7ShapeQuery {
 public:
  virtual ~K7ShapeQuery();

  virtual int Count() const = 0;
  /// Answers one of 0 to `Count` - 1; null outside.
  virtual K7ShapeRec* GetRecord(int i) const = 0;
  /// Answers one after the other, then null.
  virtual K7ShapeRec* Next() = 0;
  /// Has `Next` begin again.
  virtual void Rewind() = 0;

 protected:
  K7ShapeQuery() = default;
  K7ShapeQuery(const K7ShapeQuery&) = default;
  K7ShapeQuery& operator=(const K7ShapeQuery&) = default;
};

/// A K7ShapeTable owns the records of a layer, all of which have the same attributes.
class K7_API K7ShapeTable {
 public:
  virtual ~K7ShapeTable();

  /// Answers the name of what the records were read from; never null.
  virtual const char* DbName() const = 0;
  /// Answers the table's number among those of its layer, from 0.
  virtual int TableIndex() const = 0;

  /// \name Records
  /// @{
  virtual int RecordCount() const = 0;
  /// Answers one of 0 to `RecordCount` - 1; null outside.
  virtual K7ShapeRec* GetRecord(int i) const = 0;
  /// Answers the record of a key; null when there is none.
  virtual K7ShapeRec* FindRecord(int key) const = 0;
  /// Answers the bounds of all records; empty without any.
  virtual K7ChartRect GetBounds() const = 0;
  /// Finds the records whose bounds meet an area, edges included. The caller deletes the query; it is null
  /// without memory.
  virtual K7ShapeQuery* AreaQuery(const K7ChartRect& area) const = 0;
  /// @}

  /// \name Attributes
  /// @{
  virtual int AttribCount() const = 0;
  /// Answer the name of an attribute, null outside, and what it holds.
  virtual const char* AttribName(int i) const = 0;
  virtual K7ShapeAttribType AttribType(int i) const = 0;
  /// Answers the number of the attribute of that name, regardless of case; -1 when there is none.
  virtual int FindAttrib(const char* name) const = 0;
  /// Gives attribute i of a record of this table: windows-1252 text without control characters, or a
  /// number. Answers 0; K7_ERR_OUT_OF_RANGE for an attribute that the table does not have,
  /// K7_ERR_NOT_FOUND for one that the record does not have.
  virtual int GetAttrib(const K7ShapeRec& record, int i, K7ShapeAttrib& value) const = 0;
  /// @}

  /// \name What only some tables offer
  /// @{
  /// Finds the records whose bounds pass a test, as `AreaQuery`; here null.
  virtual K7ShapeQuery* InclusionQuery(K7ShapeInclusionTest test, void* context);
  /// Frees what can be made again, while no other thread uses the records. Answers the bytes freed; here 0.
  virtual int FreeMemCache();
  /// @}

 protected:
  K7ShapeTable() = default;
  K7ShapeTable(const K7ShapeTable&) = default;
  K7ShapeTable& operator=(const K7ShapeTable&) = default;
};
