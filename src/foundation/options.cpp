#include <k7/foundation/options.h>

#include <k7/foundation/error_string.h>
#include <k7/io/xml_elem.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr char ROOT[] = "Options";
constexpr char GROUP[] = "Group";
constexpr int BLOCK = 32;

void DeleteSetting(void* setting) { delete static_cast<K7KeyValue*>(setting); }

K7KeyValue* At(const K7PtrArray& settings, int i) { return static_cast<K7KeyValue*>(settings[i]); }

// Settings that are being loaded: deleted unless they are handed over.
class Settings {
 public:
  Settings() : m_array(BLOCK, nullptr, DeleteSetting) {}
  ~Settings() { m_array.FreeElems(); }
  K7PtrArray& Array() { return m_array; }

 private:
  K7PtrArray m_array;
};

// 0 or K7_ERR_MEMORY with nothing appended.
int AppendSetting(K7PtrArray& settings, const char* key, const char* value, const char* group) {
  std::unique_ptr<K7KeyValue> setting(new (std::nothrow) K7KeyValue);
  if (!setting) return K7_ERR_MEMORY;
  if (setting->key.Create(key) < 0 || setting->value.Create(value) < 0 || setting->group.Create(group) < 0)
    return K7_ERR_MEMORY;
  if (const int err = settings += setting.get()) return err;
  (void)setting.release();
  return 0;
}

int LoadSettings(const K7XmlElem& root, K7PtrArray& settings) {
  int count = 0;
  for (const K7XmlElem* elem = root.FirstChild(); elem; elem = elem->NextSibling()) ++count;
  if (const int err = settings.GrowTo(count, false)) return err;
  for (const K7XmlElem* elem = root.FirstChild(); elem; elem = elem->NextSibling()) {
    if (const int err = AppendSetting(settings, elem->Name(), elem->Text(), elem->AttribValue(GROUP)))
      return err;
  }
  return 0;
}

// Whatever the reader takes for the name again: a "/" at its beginning would close, at its end empty it.
bool CanNameElement(const char* key) {
  return *key && !std::strpbrk(key, " \t\n\v\f\r<>") && !std::strchr("?!/", *key) &&
         key[std::strlen(key) - 1] != '/';
}

int MakeTree(const K7PtrArray& settings, K7XmlElem& root) {
  if (const int err = root.SetName(ROOT)) return err;
  for (int i = 0; i < settings.Count(); ++i) {
    const K7KeyValue& setting = *At(settings, i);
    if (!CanNameElement(setting.key)) return K7_ERR_INVALID_DATA;
    K7XmlElem* const elem = new (std::nothrow) K7XmlElem;
    if (!elem) return K7_ERR_MEMORY;
    root.AddChild(elem);
    if (elem->SetName(setting.key) || elem->SetText(setting.value)) return K7_ERR_MEMORY;
    if (setting.group.IsEmpty()) continue;
    if (const int err = elem->AddAttrib(GROUP, setting.group)) return err;
  }
  return 0;
}

}  // namespace

K7Options* K7Options::m_inst = nullptr;

K7Options::K7Options() : m_settings(BLOCK, nullptr, DeleteSetting) { m_mutex.Initialize(); }

K7Options::~K7Options() { m_settings.FreeElems(); }

K7Options* K7Options::Inst() {
  if (!m_inst) m_inst = new (std::nothrow) K7Options;
  return m_inst;
}

void K7Options::Destroy() {
  delete m_inst;
  m_inst = nullptr;
}

int K7Options::Read(const char* path) {
  const K7LockGuard lock(m_mutex);
  K7XmlElem root;
  if (const int err = root.ParseFile(path)) return err;
  Settings loaded;
  if (const int err = LoadSettings(root, loaded.Array())) return err;
  const int count = loaded.Array().Count();
  if (const int err = m_settings.GrowTo(count, false)) return err;
  // Nothing can fail from here on: the storage is there.
  for (int i = 0; i < m_settings.Count(); ++i) DeleteSetting(m_settings[i]);
  m_settings.ClearNoFree();
  m_settings.K7Array::Insert(loaded.Array().Data(), -1, count);
  loaded.Array().ClearNoFree();
  return 0;
}

int K7Options::Write(const char* path) {
  const K7LockGuard lock(m_mutex);
  K7XmlElem root;
  int err = MakeTree(m_settings, root);
  if (err == 0) err = root.WriteFile(path);
  return err == 0 || err == K7_ERR_MEMORY ? err : K7_ERR_INVALID_DATA;
}

K7KeyValue* K7Options::GetKeyValueByIndex(int index) {
  const K7LockGuard lock(m_mutex);
  return At(m_settings, index);
}

K7KeyValue* K7Options::GetKeyValueByName(const char* key, const char* group) {
  const K7LockGuard lock(m_mutex);
  for (int i = 0; key && i < m_settings.Count(); ++i) {
    K7KeyValue* const setting = At(m_settings, i);
    if (setting->key == key && (!group || setting->group == group)) return setting;
  }
  return nullptr;
}

const char* K7Options::GetValueByKey(const char* key, const char* group) {
  const K7LockGuard lock(m_mutex);
  const K7KeyValue* const setting = GetKeyValueByName(key, group);
  return setting ? static_cast<const char*>(setting->value) : nullptr;
}

int K7Options::GetKeyValuesByGroup(const char* group, K7PtrArray& out) {
  if (!group) return K7_ERR_BAD_ARGUMENT;
  const K7LockGuard lock(m_mutex);
  for (int i = 0; i < m_settings.Count(); ++i)
    if (At(m_settings, i)->group == group)
      if (const int err = out += m_settings[i]) return err;
  return 0;
}

int K7Options::SetOption(const char* key, const char* value, const char* group) {
  if (!key) return K7_ERR_BAD_ARGUMENT;
  const K7LockGuard lock(m_mutex);
  K7KeyValue* const setting = GetKeyValueByName(key, group);
  return setting ? std::min(setting->value.Create(value), 0) : AppendSetting(m_settings, key, value, group);
}

int K7Options::SetOption(const char* key, double value, const char* group) {
  K7String text;
  const int length = text.Format("%lf", value);
  return length < 0 ? length : SetOption(key, text, group);
}

// The int as the address of a text is what hosts rely on: see the header.
int K7Options::SetOption(const char* key, int value, const char* group) {
  if (!key) return K7_ERR_BAD_ARGUMENT;
  K7String text;
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  const char* const address = reinterpret_cast<const char*>(static_cast<intptr_t>(value));
  const int length = text.Format("%s", address);
  return length < 0 ? length : SetOption(key, text, group);
}
