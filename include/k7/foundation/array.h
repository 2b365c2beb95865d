// Growable arrays of fixed-width elements and the sorted string map built from them.
#pragma once

#include <k7/export.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

class K7String;

/// Compares two elements, given by their addresses, in the manner of `qsort`: negative, zero or positive.
using K7CompareFunc = int (*)(const void*, const void*);
using K7FreeFunc = void (*)(void*);

/// Holds elements of one width in one block and copies them in and out by bytes: no constructor or
/// destructor of an element ever runs. Storage grows in whole blocks of elements and never shrinks. Order
/// comes only from the compare function that the array carries. Const operations need no lock.
///
/// Operations that return an int give 0 or a count, or a code: K7_ERR_BAD_ARGUMENT for null or a negative
/// size, K7_ERR_INVALID_DATA for a position outside the array, K7_ERR_MEMORY with the array unchanged.
class K7_API K7Array {
 public:
  /// Takes the elements' `width` in bytes. `growBy`, in elements, is clamped to 1 ... 32767. `keyOffset` is
  /// where an element's key starts: `Get` and the Shell sorts work on element + offset, everything else on
  /// element starts.
  K7Array(int width, int growBy, K7CompareFunc compare = nullptr, int keyOffset = 0);
  K7Array(const K7Array&) = delete;
  K7Array& operator=(const K7Array&) = delete;
  ~K7Array();

  /// Drops what the array holds and sets it up anew.
  void Init(int width, int growBy, K7CompareFunc compare = nullptr, int keyOffset = 0);

  /// \name Reading
  /// @{
  int Count() const { return m_count; }
  int Width() const { return m_width; }
  int Offset() const { return m_keyOffset; }
  /// Answers the storage; null while nothing was ever stored.
  void* Data() const { return m_data; }
  bool ValidIdx(int i) const { return i >= 0 && i < m_count; }
  /// Answers the address of element i plus the key offset; null outside the array.
  void* Get(int i) const { return ValidIdx(i) ? At(i) + m_keyOffset : nullptr; }
  void* operator[](int i) const { return Get(i); }
  /// @}

  /// \name Changing
  /// @{
  /// Makes room for `n` elements in all; with `setCount` the count becomes `n`, new elements zero.
  int GrowTo(int n, bool setCount);
  /// Appends the element at `elem`, which may lie within this array.
  int operator+=(const void* elem);
  /// Inserts `n` consecutive elements before `pos`; a negative `pos` appends them.
  int Insert(const void* elems, int pos, int n = 1);
  /// Overwrites element i.
  int Put(int i, const void* elem);
  /// Removes up to `n` elements from `pos` on. Answers the number removed.
  int Remove(int pos, int n);
  /// Answers the index of the last element whose bytes equal those at `elem`, or -1.
  int GetIndex(const void* elem) const;
  /// Does the same: it takes the address of an element's bytes, whatever the elements are.
  int GetIndexByPointer(const void* elem) const { return GetIndex(elem); }
  /// Removes the element that `GetIndex` finds. Answers the number removed, 0 or 1.
  int Remove(const void* elem);
  int RemoveByPointer(const void* elem) { return Remove(elem); }
  int operator-=(const void* elem) { return Remove(elem); }
  /// Answers K7_ERR_BAD_ARGUMENT outside the array.
  int Swap(int i, int j);
  /// Empties the array. With `keepStorage` the storage stays, zero-filled.
  void Clear(bool keepStorage = false);
  /// Empties the array and leaves the storage as it is.
  void ClearNoFree() { m_count = 0; }
  /// @}

  /// \name Order
  /// A null `compare` means the array's own.
  /// @{
  /// Sorts in place, not stably. Answers 0 or the code of `Swap`.
  int ShellSort(K7CompareFunc compare = nullptr);
  /// Sorts by element starts. Answers false when the array has no storage.
  bool QuickSort(K7CompareFunc compare = nullptr);
  /// Shell-sorts the indexes alone. Answers `Count` ints, which the caller frees with `free`; null without
  /// memory.
  int* IndexSort(K7CompareFunc compare = nullptr) const;
  /// Answers the first of the elements of a sorted array that equal `key`; `last` (optional) receives the
  /// last of them. Without one it answers -1, and `last` receives the insertion position. A null key gives
  /// -1 and leaves `last` alone.
  int BinarySearch(const void* key, int* last = nullptr, K7CompareFunc compare = nullptr) const;
  /// Answers the first equal element, else the insertion position, else -1 when `key` sorts before every
  /// element.
  int BinarySearchMinIndex(const void* key, K7CompareFunc compare = nullptr) const;
  /// Removes each element of a sorted array that equals its predecessor, and appends it to `removed` when
  /// that is given: another array of the same width (else K7_ERR_BAD_ARGUMENT). Answers the number removed.
  int RemoveAdjDups(K7CompareFunc compare = nullptr, K7Array* removed = nullptr);
  /// @}

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

/// Matches what the address of a pointer does not point to.
template <class T>
concept K7NoPointer = !std::is_pointer_v<T> && !std::is_void_v<T>;

/// Holds pointers. Their objects belong to the array only in so far as `FreeElems` frees them: copies share
/// them, and the destructor leaves them alone.
///
/// An element is a pointer. So what `K7Array` does by an element's address takes the address of a pointer
/// here, and that of an object does not compile. `+=`, `-=` and the operations with "Ptr" in their names
/// take the pointer itself.
class K7_API K7PtrArray : public K7Array {
 public:
  explicit K7PtrArray(int growBy = 8, K7CompareFunc compare = nullptr, K7FreeFunc freeElem = nullptr);
  /// Copies the pointers and shares their objects. Without memory the copy is empty.
  K7PtrArray(const K7PtrArray& other);
  K7PtrArray& operator=(const K7PtrArray& other);

  /// Drops the pointers and sets the array up anew.
  void InitPtrArray(int growBy, K7CompareFunc compare = nullptr, K7FreeFunc freeElem = nullptr);

  /// \name By the pointer itself
  /// @{
  /// Answers the stored pointer; null outside the array.
  void* operator[](int i) const { return ValidIdx(i) ? *reinterpret_cast<void**>(At(i)) : nullptr; }
  int operator+=(void* p) { return K7Array::operator+=(&p); }
  /// Removes the last equal pointer. Answers the number removed, 0 or 1.
  int operator-=(void* p) { return K7Array::Remove(&p); }
  int InsertPtr(void* p, int pos) { return K7Array::Insert(&p, pos, 1); }
  int PutPtr(int i, void* p) { return K7Array::Put(i, &p); }
  /// Answers the last position of the pointer, or -1.
  int FindPtr(const void* p) const { return K7Array::GetIndex(&p); }
  /// @}

  /// \name By an address
  /// As those of K7Array. An object's address is refused when it is compiled.
  /// @{
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
  /// @}

  /// Takes over the settings and pointers of `from`. Answers K7_ERR_BAD_ARGUMENT for null; K7_ERR_MEMORY
  /// leaves this array empty.
  int DeepCopy(const K7PtrArray* from);
  /// Calls the free function (`free` when there is none) on every pointer that is not null, and empties the
  /// array.
  void FreeElems();

 private:
  K7FreeFunc m_freeElem = nullptr;
};

/// Holds texts. An owning array stores a copy of each text put in and frees it on removal; any other stores
/// the caller's pointer. Its own compare orders by unsigned bytes, or by upper-cased texts with
/// `ignoreCase`.
class K7_API K7StrArray : public K7Array {
 public:
  explicit K7StrArray(bool ownsStrings = true, bool ignoreCase = false, int growBy = 8);
  ~K7StrArray();

  /// \name By the text itself
  /// Null is K7_ERR_BAD_ARGUMENT.
  /// @{
  int operator+=(const char* s) { return Insert(s, -1); }
  int Insert(const char* s, int pos);
  int Put(int i, const char* s);
  /// @}

  /// \name By an address
  /// As those of K7Array, by the address of the first of `n` pointers to texts. K7_ERR_BAD_ARGUMENT when
  /// one of them is null.
  /// @{
  int operator+=(const void* elem) { return Insert(elem, -1, 1); }
  int Insert(const void* elems, int pos, int n);
  int Put(int i, const void* elem);
  /// @}

  /// Answer K7_ERR_BAD_ARGUMENT: null has no type that tells the two above apart.
  int operator+=(std::nullptr_t) { return Insert(static_cast<const char*>(nullptr), -1); }
  int Put(int i, std::nullptr_t) { return Put(i, static_cast<const char*>(nullptr)); }

  /// Frees the owned texts that a lesser count leaves behind. Those that a greater one adds are null.
  int GrowTo(int n, bool setCount);
  int Remove(int pos, int n);
  /// Remove by the address of a stored pointer, as those of K7Array.
  int Remove(const void* elem) { return Remove(GetIndex(elem), 1); }
  int RemoveByPointer(const void* elem) { return Remove(elem); }
  int operator-=(const void* elem) { return Remove(elem); }
  void Clear(bool keepStorage = false);
  /// Hands owned texts over to `removed` when that is given.
  int RemoveAdjDups(K7CompareFunc compare = nullptr, K7Array* removed = nullptr);
  /// Answers the stored text; null outside the array.
  char* operator[](int i) const { return ValidIdx(i) ? Data()[i] : nullptr; }
  char** Data() const { return static_cast<char**>(K7Array::Data()); }
  /// Answers the first position of `s` in an array sorted by its own order; -1 when absent. `last` is that
  /// of `BinarySearch`.
  int Find(const char* s, int* last = nullptr) const { return s ? BinarySearch(&s, last) : -1; }
  /// Frees owned texts and empties the array.
  void Delete();

 private:
  bool m_ownsStrings;
};

/// Holds ints.
class K7_API K7IntArray : public K7Array {
 public:
  explicit K7IntArray(int growBy = 8, K7CompareFunc compare = nullptr);
  /// Answers the value; -1 outside the array.
  int operator[](int i) const { return ValidIdx(i) ? *reinterpret_cast<int*>(At(i)) : -1; }
  /// Appends a value. The other form appends by an address, as that of K7Array.
  int operator+=(int value) { return K7Array::operator+=(&value); }
  using K7Array::operator+=;
};

/// Holds doubles.
class K7_API K7DoubleArray : public K7Array {
 public:
  explicit K7DoubleArray(int growBy = 8, K7CompareFunc compare = nullptr);
  /// Answers the value; 0 outside the array.
  double operator[](int i) const { return ValidIdx(i) ? *reinterpret_cast<double*>(At(i)) : 0; }
  /// Appends a value. The other form appends by an address, as that of K7Array.
  int operator+=(double value) { return K7Array::operator+=(&value); }
  // A plain 0 would be as good an address.
  int operator+=(int value) { return *this += static_cast<double>(value); }
  using K7Array::operator+=;
};

/// Maps texts to pointers and keeps its keys in ascending byte order. Keys are copies. Values stay the
/// caller's until `FreeElems` hands them to `freeValue`, or to `free` when that is null.
class K7_API K7StrMap {
 public:
  explicit K7StrMap(K7FreeFunc freeValue = nullptr);
  K7StrMap(const K7StrMap&) = delete;
  K7StrMap& operator=(const K7StrMap&) = delete;

  /// Enters `value` under `key`. Answers the value that was there before, null if none; `err` (optional)
  /// receives 0 or K7_ERR_MEMORY.
  void* Insert(const K7String& key, void* value, int* err = nullptr);
  /// Answer the value; null when absent. A null `key` is the empty text.
  void* Get(const K7String& key) const;
  void* Get(const char* key) const;
  /// Answer by position in key order; null outside.
  void* Get(int i) const { return m_values[i]; }
  const char* GetKey(int i) const { return m_keys[i]; }
  /// Takes the entry out. Answers its value, null if absent.
  void* Remove(const K7String& key);
  int Count() const { return m_keys.Count(); }
  /// Frees the keys, and the values through the free function, and empties the map.
  void FreeElems();

 private:
  K7StrArray m_keys;
  K7PtrArray m_values;
};
