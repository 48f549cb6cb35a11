// Cones: all that a goal depends on, and how it is used.
#pragma once

#include "check/proof/candidates.h"
#include "check/proof/reader.h"

/// An instance whose value matters.
struct ConeInstance {
  ParmEntry* parm;
  IndexTuple indices;
  NameUse use = {};  ///< by the goal and by the definitions of the cone
  /// What it may be just now; nullopt where what it follows is not set yet.
  std::optional<NameDomain> present = {};

  [[nodiscard]] std::string name() const;
  /// What it holds; empty where it is unset.
  [[nodiscard]] const std::string& held() const { return parm->parm.committedText(indices); }
};

/// Whether one of `sources`, which `own` reads, refers to it in turn, or may: it is not below it.
bool refersBack(const VariableSources& sources, const ParmEntry& own);

/// The instances that a goal depends on, directly or through others, for one reader. What only
/// locks another one, or is read by its defaults, is left out, unless some refer to each other:
/// these count from their defaults on.
class Cone {
 public:
  Cone(const Goal& goal, const Reader& reader, const CompiledText& text);

  /// Each after what it follows.
  [[nodiscard]] std::vector<ConeInstance>& instances() { return instances_; }
  [[nodiscard]] const std::vector<ConeInstance>& instances() const { return instances_; }
  /// Their full names.
  [[nodiscard]] std::vector<std::string> names() const;
  /// The instance that `reader` reads under the name of a parameter, or null.
  [[nodiscard]] const ConeInstance* find(const VariableSource& source, const Reader& reader) const;
  /// Whether two parameters in it refer to each other, or one to itself, by their indices as well.
  [[nodiscard]] bool hasRing() const { return hasRing_; }
  /// Notes how each instance is used.
  void noteUses(const Goal& goal, const CompiledText& text);

 private:
  using Key = std::pair<const ParmEntry*, IndexTuple>;
  // What is followed of a parameter.
  using Follow = std::function<const VariableSources&(const ParmEntry& parm)>;

  void build(const Goal& goal, const Reader& reader, const Follow& followed);
  [[nodiscard]] bool hasRingIn(const Follow& followed) const;
  void addAll(const VariableSources& sources, const Reader& reader);
  void addIndices(const Reader& reader);
  void add(const VariableSource& source, const Reader& reader);

  bool hasRing_;
  std::vector<ConeInstance> instances_;
  std::set<const IndexEntry*> indices_;  // which decide what is there
  std::map<Key, size_t> places_;         // in `instances_`, once they are in order
};
