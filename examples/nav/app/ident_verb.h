// What the verbs that are asked about an identifier have in common.
#pragma once

#include "app/database.h"
#include "app_common/verb.h"

#include <optional>

/// Takes an identifier and where it is meant, opens the database and finds the records.
class IdentVerb : public Verb {
 public:
  void AddOptions(OptionTable& table) override;
  std::string TakeArgument(const std::string& argument) override;
  std::string Run() override;

 protected:
  /// `needs` is said when there is no identifier.
  explicit IdentVerb(const char* needs) : m_needs(needs) {}
  /// Says of the records, at least one, what the verb says. With a position the nearest comes first, else
  /// they come by type. They belong to the store. Empty, or what went wrong.
  virtual std::string Tell(NavStore& store, const std::vector<const K7NavRec*>& found) = 0;

  const std::string& Ident() const { return m_ident; }
  /// Null when none was given.
  const K7LatLon* Near() const { return m_near ? &*m_near : nullptr; }
  const char* Needs() const { return m_needs; }

 private:
  const char* m_needs;
  std::string m_ident;
  std::optional<K7LatLon> m_near;
  DatabaseOptions m_database;
};
