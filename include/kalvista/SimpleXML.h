/// @file
/// The library's small XML reader.
#ifndef KALVISTA_SIMPLE_XML_H
#define KALVISTA_SIMPLE_XML_H

#include <kalvista/export.h>

#include <cstdint>

namespace ardo {

/// One comment delimiter of a text.
struct CommentToken {
  std::int32_t kind;      ///< 0 for an opening "<!--", 1 for a closing "-->"
  std::int32_t position;  ///< offset of the opening's "<", or just past the closing's ">"
};

/// Orders comment delimiters by position. Thread context: **any thread**.
/// @param a delimiter
/// @param b delimiter
/// @return true when `a` stands before `b`
KALVISTA_API bool compTokens(CommentToken a, CommentToken b);

/// Reads the content of one root element as flat text and finds elements in it by plain search.
///
/// The text is what stands strictly between the line of the root's opening tag and the line of its
/// closing tag: line feeds dropped, carriage returns turned into line feeds, comments cut out. An
/// element is the text between "<name>" and the first "</name>" that follows. There are no
/// attributes, no blanks inside tags, no "<name/>": a tag in such a form is never found. An element
/// that holds another of its own name ends at the inner one's closing tag.
///
/// Order of use: construct, open(), setNode(), then navigate and read.
///
/// Lookups before open() find nothing. Failures of lookups leave the current element as it was and
/// write no log line. A null name is the name of nothing; a null `out` is refused with false, and
/// nothing is looked up.
///
/// Numbers are read by the numeric locale that the calling thread has when it reads them.
///
/// Thread context: **one thread at a time** for each object; different objects from **any thread**.
/// What open() logs is bound by the words of brivex::Logger: no thread configures the log
/// meanwhile. The constructor is **process-wide** until the numeric locale is "C", and changes
/// nothing from then on.
class KALVISTA_API SimpleXML {
 public:
  /// Makes an empty reader and sets the process's numeric locale to "C" for good: numbers in the
  /// files have a decimal point whatever the user's language. A locale that a thread has of its own
  /// (`uselocale`), and one that the application sets afterwards, stay in force.
  SimpleXML();
  /// Releases the text.
  ~SimpleXML();
  SimpleXML(const SimpleXML&) = delete;
  SimpleXML& operator=(const SimpleXML&) = delete;

  /// Loads a document.
  ///
  /// Bytes ahead of the first "<" are skipped. A line of 4096 characters or more (carriage return
  /// included) ends the reading; a line counts up to its first zero byte. A text opened before is
  /// released. Call setNode() before any lookup.
  /// @param file path; must name a regular file below 2 GiB
  /// @param root name of the root element; its tag may have attributes
  /// @return true when the file was read, **also when it has no such root** (see hasRoot());
  ///         false with a DEBUG line when it cannot be opened (the object stays as it was);
  ///         false with ERROR lines when its comments do not balance
  bool open(const char* file, const char* root);

  /// Loads the document `name`.xml of a directory, which is made when it does not exist.
  /// @param dir directory; empty means "Imager" below the working directory
  /// @param name file name without extension
  /// @param root name of the root element
  /// @return as open(const char*, const char*); false also when the path cannot be built
  bool open(const char* dir, char* name, const char* root);

  /// Tells whether the last document that was opened has its root element.
  /// @return false before open() and when the root's opening tag was not found
  bool hasRoot() const;

  /// Goes to the whole document.
  /// @return true
  bool setNode();
  /// Enters the first child of that name.
  /// @param name element name
  /// @return false when there is none, or 254 elements are entered already
  bool setNode(const char* name);
  /// Enters a child by index.
  /// @param name element name
  /// @param index from 0, counted among the children of that name
  /// @return false when there is none, or 254 elements are entered already
  bool setNode(const char* name, int index);
  /// Leaves the current element for its parent.
  /// @return false when the whole document is the current element
  bool resetNode();

  /// Counts the children of that name. A child that ends where its parent ends counts, though
  /// setNode(const char*, int) does not enter it.
  /// @param name element name
  /// @return the count; 0 when there is none
  int getNodeCount(const char* name) const;

  /// Copies the content of the current element.
  /// @param out receives a zero-terminated text that the caller releases with `delete[]`; untouched
  ///            when the content is empty
  /// @return false when the content is empty, there is no memory for it, or `out` is null
  bool getNode(char** out) const;

  /// Searches a tag.
  /// @param name element name
  /// @param from offset where the search starts
  /// @param limit offset that the tag must start before
  /// @param closing true for "</name>", false for "<name>"
  /// @return offset of the closing tag, or offset just past the opening tag; -1 when not found
  int getKey(const char* name, int from, int limit, bool closing) const;

  /// Reads the first child of that name as an integer: decimal, hexadecimal ("0x10") or octal
  /// ("010" is 8).
  /// @param name element name
  /// @param out receives the value; untouched when the child is absent **or its text is no number**
  /// @return true when the child exists
  bool getInt(const char* name, int* out);
  /// Reads the first child of that name as a decimal integer.
  /// @copydetails getFloat
  bool getLong(const char* name, long* out);
  /// Reads the first child of that name as a floating-point number.
  /// @param name element name
  /// @param out receives the value; untouched when the child is absent **or its text is no number**
  /// @return true when the child exists
  bool getFloat(const char* name, float* out);
  /// Copies the text of the first child of that name, blanks included.
  /// @param name element name
  /// @param out receives a zero-terminated text, possibly empty, that the caller releases with
  ///            `delete[]`; null when the child is absent or there is no memory for its text
  /// @return true when the child exists and `out` has its text
  bool getString(const char* name, char** out);

  std::int32_t length = 0;           ///< characters of the text, **cut comments still counted**
  std::int32_t nodeBegin[256] = {};  ///< offset of the current element's content, for each depth
  std::int32_t nodeEnd[256] = {};  ///< offset of the current element's closing tag, for each depth
  std::uint16_t depth = 0;         ///< elements entered; 0 is the whole document
  char* buffer = nullptr;          ///< the zero-terminated text; owned; null before open()

 private:
  friend struct SimpleXMLInternals;

  struct Sibling {
    std::int32_t number;  // index + 1; 0 when the element was not entered by index
    std::int32_t tagLength;
  };

  bool rootFound_ = false;
  std::int32_t textLength_ = 0;  // characters before the terminator
  Sibling siblings_[256] = {};   // how the element was last entered, for each depth
};

}  // namespace ardo

#endif  // KALVISTA_SIMPLE_XML_H
