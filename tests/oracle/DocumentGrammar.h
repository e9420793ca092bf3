// Random documents that are wrong in the ways in which documents go wrong.
#ifndef KALVISTA_TESTS_ORACLE_DOCUMENT_GRAMMAR_H
#define KALVISTA_TESTS_ORACLE_DOCUMENT_GRAMMAR_H

#include <string>
#include <string_view>
#include <vector>

#include "ByteSource.h"

namespace oracle {

class DocumentGrammar {
 public:
  explicit DocumentGrammar(ByteSource& source) : source_(source) {}

  /// A document whose root is mostly "root".
  std::string document();
  /// A calibration, mostly well formed.
  std::string calibration();
  /// The text of a number, or of what somebody took for one.
  std::string numberText();

 private:
  void add(std::string_view token) { tokens_.emplace_back(token); }
  void addLineEnd();
  void addContent(int items, int nesting);
  void addFragment();
  void addElement(int nesting);
  void addComment(int nesting);
  void addDeepNest();
  void addOutlined(std::string_view& outline);
  void addOutlinedContent(std::string_view& outline);
  void breakTokens();
  std::string joinTokens();

  ByteSource& source_;
  std::vector<std::string> tokens_;
  std::string_view lineEnd_;
  bool wild_ = false;  // comments may be unbalanced
};

/// Names to look up: those of the document's tags, and texts that are no names.
std::vector<std::string> namesIn(const std::string& document);

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_DOCUMENT_GRAMMAR_H
