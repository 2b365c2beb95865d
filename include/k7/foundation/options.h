// K7Options: the process-wide table of named settings. K7KeyValue: one of them.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/foundation/mutex.h>
#include <k7/foundation/string.h>

/// One setting. Values are text; numbers stand in their printed form. The group may be empty.
struct K7_API K7KeyValue {
  K7String key;
  K7String value;
  K7String group;
};

/// The settings of the process, grouped, kept as an XML file: root "Options", one child a setting with the
/// key as its name, the value as its text and the group as its attribute "Group".
///
/// Each operation holds the table's lock. The instance is made and destroyed without one: call `Inst` before
/// other threads use the options. Pointers to settings and values stay good until that setting is set again,
/// `Read` succeeds, or the instance goes; a host whose other threads may do that meanwhile takes copies.
///
/// Keys are matched with regard to case. Where a group is asked for, null means any group and the empty text
/// the settings without one.
class K7_API K7Options {
 public:
  /// Answers the instance, made on first use; null only without memory.
  static K7Options* Inst();
  static void Destroy();

  /// \name Files
  /// @{
  /// Replaces all settings by those of the file. On failure they stay as they are, and the answer is the
  /// code of `K7XmlElem::ParseFile` or K7_ERR_MEMORY.
  int Read(const char* path);
  /// Writes the settings in their order, with `K7XmlElem::WriteFile`: a failure leaves a whole file whole.
  /// Answers 0, K7_ERR_MEMORY, or K7_ERR_INVALID_DATA when the file cannot be written or a key cannot name
  /// an element, so that the file could not be read again: it is empty, holds whitespace, "<" or ">",
  /// starts with "?", "!" or "/", or ends in "/".
  int Write(const char* path);
  /// @}

  /// \name Reading
  /// @{
  /// Answers the setting at a place in file order, from 0; null behind the last. It serves whoever checks a
  /// whole file.
  K7KeyValue* GetKeyValueByIndex(int index);
  /// Answer the first such setting and its value; null when absent.
  K7KeyValue* GetKeyValueByName(const char* key, const char* group = nullptr);
  const char* GetValueByKey(const char* key, const char* group = nullptr);
  /// Appends a `K7KeyValue*` for each setting of the group. Answers 0, K7_ERR_BAD_ARGUMENT for a null
  /// group, or K7_ERR_MEMORY.
  int GetKeyValuesByGroup(const char* group, K7PtrArray& out);
  /// @}

  /// \name Setting
  /// @{
  /// Set the first such setting, or append a new one (a null group is an empty one then). Answer 0,
  /// K7_ERR_BAD_ARGUMENT for a null key, or K7_ERR_MEMORY with the settings unchanged. A null value is the
  /// empty text; a double is printed with six decimals.
  int SetOption(const char* key, const char* value, const char* group = nullptr);
  int SetOption(const char* key, double value, const char* group = nullptr);
  /// Does NOT store a number: it takes the int as the address of a text, which it copies; 0 stores
  /// "(null)". It is kept for hosts that rely on it, and only where an int holds an address; any other
  /// value reads memory that is not the caller's. To store a number, print it and set the text.
  int SetOption(const char* key, int value, const char* group = nullptr);
  /// @}

 protected:
  K7Options();
  K7Options(const K7Options&) = delete;
  K7Options& operator=(const K7Options&) = delete;
  ~K7Options();

  static K7Options* m_inst;

 private:
  K7PtrArray m_settings;  // of K7KeyValue, in file order
  K7Mutex m_mutex;
};
