// Growable arrays of fixed-width elements and the sorted string map built from them.
#pragma once

#include <k7/export.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

class K7String;

/// In the manner of `qsort`: negative, zero or positive. Receives addresses of elements.
using K7CompareFunc = int (*)(const void*, const void*);
using K7FreeFunc = void (*)(void*);

/// Contiguous array of elements of one width, copied in and out by bytes: no constructor or destructor of an
/// element ever runs. Storage grows in whole blocks of elements and never shrinks. Order comes only from the
/// compare function that the array carries. Const operations need no lock.
///
/// Codes: K7_ERR_BAD_ARGUMENT for null or a negative size, K7_ERR_INVALID_DATA for a position outside the
/// array, K7_ERR_MEMORY with the array unchanged.
class K7_API K7Array {
 public:
  /// `width` in bytes. `growBy`, in elements, is clamped to 1 ... 32767. `keyOffset` is where an element's
  /// key starts: `Get` and the Shell sorts work on element + offset, everything else on element starts.
  K7Array(int width, int growBy, K7CompareFunc compare = nullptr, int keyOffset = 0);
  K7Array(const K7Array&) = delete;
  K7Array& operator=(const K7Array&) = delete;
  ~K7Array();

  /// Drops what the array holds and sets it up anew.
  void Init(int width, int growBy, K7CompareFunc compare = nullptr, int keyOffset = 0);

  int Count() const { return m_count; }
  int Width() const { return m_width; }
  int Offset() const { return m_keyOffset; }
  /// The storage; null while nothing was ever stored.
  void* Data() const { return m_data; }
  bool ValidIdx(int i) const { return i >= 0 && i < m_count; }
  /// Address of element i plus the key offset; null outside the array.
  void* Get(int i) const { return ValidIdx(i) ? At(i) + m_keyOffset : nullptr; }
  void* operator[](int i) const { return Get(i); }

  /// Makes room for `n` elements in all; with `setCount` the count becomes `n`, new elements zero.
  int GrowTo(int n, bool setCount);
  /// Appends the element at `elem`, which may lie within this array.
  int operator+=(const void* elem);
  /// Inserts `n` consecutive elements before `pos`; a negative `pos` appends.
  int Insert(const void* elems, int pos, int n = 1);
  int Put(int i, const void* elem);
  /// Removes up to `n` elements from `pos` on. The number removed.
  int Remove(int pos, int n);
  /// Index of the last element whose bytes equal those at `elem`, or -1.
  int GetIndex(const void* elem) const;
  /// The same: the address of an element's bytes, whatever the elements are.
  int GetIndexByPointer(const void* elem) const { return GetIndex(elem); }
  /// Removes the element that `GetIndex` finds. The number removed, 0 or 1.
  int Remove(const void* elem);
  int RemoveByPointer(const void* elem) { return Remove(elem); }
  int operator-=(const void* elem) { return Remove(elem); }
  /// K7_ERR_BAD_ARGUMENT outside the array.
  int Swap(int i, int j);
  /// Empties; with `keepStorage` the storage stays, zero-filled.
  void Clear(bool keepStorage = false);
  void ClearNoFree() { m_count = 0; }

  /// Sorts and searches; a null `compare` means the array's own.
  /// In place, not stable; 0 or the code of `Swap`.
  int ShellSort(K7CompareFunc compare = nullptr);
  /// False when the array has no storage. Compares element starts.
  bool QuickSort(K7CompareFunc compare = nullptr);
  /// Shell sort of the indexes alone: `Count` ints, which the caller frees with `free`; null without memory.
  int* IndexSort(K7CompareFunc compare = nullptr) const;
  /// First of the elements equal to `key` in a sorted array, `last` (optional) receiving the last of them; -1
  /// without one, `last` receiving the insertion position. A null key gives -1 and leaves `last` alone.
  int BinarySearch(const void* key, int* last = nullptr, K7CompareFunc compare = nullptr) const;
  /// First equal element, else the insertion position, else -1 when `key` sorts before every element.
  int BinarySearchMinIndex(const void* key, K7CompareFunc compare = nullptr) const;
  /// Deletes each element of a sorted array that equals its predecessor, appending it to `removed` when
  /// given, another array of the same width (else K7_ERR_BAD_ARGUMENT). The number removed.
  int RemoveAdjDups(K7CompareFunc compare = nullptr, K7Array* removed = nullptr);

 protected:
  char* At(int i) const { return m_data + static_cast<int64_t>(i) * m_width; }
  K7CompareFunc Compare() const { return m_compare; }
  int GrowBy() const { return m_growBy; }

 private:
  int32_t m_width = 0;
  int32_t m_allocated = 0;  // bytes
  int16_t m_growBy = 1;
  int16_t m_keyOffset = 0;
  int32_t m_count = 0;
  K7CompareFunc m_compare = nullptr;
  char* m_data = nullptr;
};

/// What the address of a pointer does not point to.
template <class T>
concept K7NoPointer = !std::is_pointer_v<T> && !std::is_void_v<T>;

/// Array of pointers. The pointers' objects belong to the array only in so far as `FreeElems` frees them:
/// copies share them, and the destructor leaves them alone.
///
/// An element is a pointer, so that what `K7Array` does by an element's address takes the address of a
/// pointer here, and refuses that of an object when it is compiled. `+=`, `-=` and the operations with "Ptr"
/// in their names take the pointer itself.
class K7_API K7PtrArray : public K7Array {
 public:
  explicit K7PtrArray(int growBy = 8, K7CompareFunc compare = nullptr, K7FreeFunc freeElem = nullptr);
  /// Copies the pointers; their objects are shared. Without memory the copy is empty.
  K7PtrArray(const K7PtrArray& other);
  K7PtrArray& operator=(const K7PtrArray& other);

  /// Drops the pointers and sets the array up anew.
  void InitPtrArray(int growBy, K7CompareFunc compare = nullptr, K7FreeFunc freeElem = nullptr);
  /// The stored pointer; null outside the array.
  void* operator[](int i) const { return ValidIdx(i) ? *reinterpret_cast<void**>(At(i)) : nullptr; }
  int operator+=(void* p) { return K7Array::operator+=(&p); }
  /// Removes the last equal pointer. The number removed, 0 or 1.
  int operator-=(void* p) { return K7Array::Remove(&p); }
  int InsertPtr(void* p, int pos) { return K7Array::Insert(&p, pos, 1); }
  int PutPtr(int i, void* p) { return K7Array::Put(i, &p); }
  /// Last position of the pointer, or -1.
  int FindPtr(const void* p) const { return K7Array::GetIndex(&p); }

  using K7Array::GetIndex;
  using K7Array::GetIndexByPointer;
  using K7Array::Insert;
  using K7Array::Put;
  using K7Array::Remove;
  using K7Array::RemoveByPointer;
  template <K7NoPointer T>
  int GetIndex(const T* object) const = delete;
  template <K7NoPointer T>
  int GetIndexByPointer(const T* object) const = delete;
  template <K7NoPointer T>
  int Insert(const T* object, int pos, int n = 1) = delete;
  template <K7NoPointer T>
  int Put(int i, const T* object) = delete;
  template <K7NoPointer T>
  int Remove(const T* object) = delete;
  template <K7NoPointer T>
  int RemoveByPointer(const T* object) = delete;

  /// Takes over the settings and pointers of `from`. K7_ERR_BAD_ARGUMENT for null; K7_ERR_MEMORY leaves this
  /// empty.
  int DeepCopy(const K7PtrArray* from);
  /// Calls the free function, or `free` when there is none, on every pointer that is not null, and empties.
  void FreeElems();

 private:
  K7FreeFunc m_freeElem = nullptr;
};

/// Array of texts. An owning array stores a copy of each text put in and frees it on removal; another stores
/// the caller's pointer. Its own compare orders by unsigned bytes, or by upper-cased texts with `ignoreCase`.
class K7_API K7StrArray : public K7Array {
 public:
  explicit K7StrArray(bool ownsStrings = true, bool ignoreCase = false, int growBy = 8);
  ~K7StrArray();

  /// Takes a text. K7_ERR_BAD_ARGUMENT for null.
  int operator+=(const char* s) { return Insert(s, -1); }
  int Insert(const char* s, int pos);
  int Put(int i, const char* s);
  /// As those of K7Array, by the address of the first of `n` pointers to texts. K7_ERR_BAD_ARGUMENT when one
  /// of them is null.
  int operator+=(const void* elem) { return Insert(elem, -1, 1); }
  int Insert(const void* elems, int pos, int n);
  int Put(int i, const void* elem);
  /// Null has no type that tells the two apart.
  int operator+=(std::nullptr_t) { return Insert(static_cast<const char*>(nullptr), -1); }
  int Put(int i, std::nullptr_t) { return Put(i, static_cast<const char*>(nullptr)); }

  /// Frees the owned texts that a lesser count leaves behind; those of a greater one are null.
  int GrowTo(int n, bool setCount);
  int Remove(int pos, int n);
  /// As those of K7Array, by the address of a stored pointer.
  int Remove(const void* elem) { return Remove(GetIndex(elem), 1); }
  int RemoveByPointer(const void* elem) { return Remove(elem); }
  int operator-=(const void* elem) { return Remove(elem); }
  void Clear(bool keepStorage = false);
  /// Owned texts pass to `removed` when it is given.
  int RemoveAdjDups(K7CompareFunc compare = nullptr, K7Array* removed = nullptr);
  /// The stored text; null outside the array.
  char* operator[](int i) const { return ValidIdx(i) ? Data()[i] : nullptr; }
  char** Data() const { return static_cast<char**>(K7Array::Data()); }
  /// First position of `s` by the array's order, in a sorted array; -1 when absent. `last` as in
  /// `BinarySearch`.
  int Find(const char* s, int* last = nullptr) const { return s ? BinarySearch(&s, last) : -1; }
  /// Frees owned texts and empties.
  void Delete();

 private:
  bool m_ownsStrings;
};

class K7_API K7IntArray : public K7Array {
 public:
  explicit K7IntArray(int growBy = 8, K7CompareFunc compare = nullptr);
  /// -1 outside the array.
  int operator[](int i) const { return ValidIdx(i) ? *reinterpret_cast<int*>(At(i)) : -1; }
  /// Appends a value; by an address as those of K7Array.
  int operator+=(int value) { return K7Array::operator+=(&value); }
  using K7Array::operator+=;
};

class K7_API K7DoubleArray : public K7Array {
 public:
  explicit K7DoubleArray(int growBy = 8, K7CompareFunc compare = nullptr);
  /// 0 outside the array.
  double operator[](int i) const { return ValidIdx(i) ? *reinterpret_cast<double*>(At(i)) : 0; }
  /// Appends a value; by an address as those of K7Array.
  int operator+=(double value) { return K7Array::operator+=(&value); }
  // A plain 0 would be as good an address.
  int operator+=(int value) { return *this += static_cast<double>(value); }
  using K7Array::operator+=;
};

/// Map from text to pointer, its keys in ascending byte order. Keys are copies; values stay the caller's
/// until `FreeElems` hands them to `freeValue`, or to `free` when that is null.
class K7_API K7StrMap {
 public:
  explicit K7StrMap(K7FreeFunc freeValue = nullptr);
  K7StrMap(const K7StrMap&) = delete;
  K7StrMap& operator=(const K7StrMap&) = delete;

  /// Enters `value` under `key`. The value that was there before, null if none; `err` (optional) receives 0
  /// or K7_ERR_MEMORY.
  void* Insert(const K7String& key, void* value, int* err = nullptr);
  /// Null when absent. A null `key` is the empty text.
  void* Get(const K7String& key) const;
  void* Get(const char* key) const;
  /// By position in key order; null outside.
  void* Get(int i) const { return m_values[i]; }
  const char* GetKey(int i) const { return m_keys[i]; }
  /// The removed value, null if absent.
  void* Remove(const K7String& key);
  int Count() const { return m_keys.Count(); }
  /// Frees the keys, and the values through the free function, and empties.
  void FreeElems();

 private:
  K7StrArray m_keys;
  K7PtrArray m_values;
};
