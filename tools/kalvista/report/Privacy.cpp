#include "report/Privacy.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <string_view>

namespace tool {
namespace {

constexpr std::string_view kHomes = "/home/";
constexpr std::string_view kSomeHome = "~";
constexpr std::string_view kSomeUser = "USER";

// Of names of files and users; bytes above ASCII belong to letters.
bool isOfName(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || (character & '\x80') != 0 ||
         std::string_view("._-").find(character) != std::string_view::npos;
}

bool endsName(const std::string& text, std::size_t at) {
  if (!isOfName(text[at])) return true;
  // The full stop of a sentence is no part of the name before it.
  return text[at] == '.' && !isOfName(text[at + 1]);
}

bool beginsPath(const std::string& text, std::size_t at) {
  return !isOfName(text[at - 1]) && text[at - 1] != '/';
}

bool isPartOfPath(const std::string& text, std::size_t at) { return text[at - 1] == '/'; }

bool beginsWord(const std::string& text, std::size_t at) { return !isOfName(text[at - 1]); }

using Place = bool (*)(const std::string&, std::size_t);

void replaceNames(std::string* text, std::string_view name, std::string_view replacement,
                  Place place) {
  for (std::size_t at = text->find(name); at != std::string::npos; at = text->find(name, at)) {
    const bool isWhole = place(*text, at) && endsName(*text, at + name.size());
    if (isWhole) text->replace(at, name.size(), replacement);
    at += isWhole ? replacement.size() : name.size();
  }
}

void replaceOtherHomes(std::string* text) {
  for (std::size_t at = text->find(kHomes); at != std::string::npos; at = text->find(kHomes, at)) {
    std::size_t end = at + kHomes.size();
    while (!endsName(*text, end)) ++end;
    const bool isHome = beginsPath(*text, at) && end > at + kHomes.size();
    if (isHome) text->replace(at, end - at, kSomeHome);
    at += isHome ? kSomeHome.size() : kHomes.size();
  }
}

void clean(const User& user, Place place, std::string* text) {
  text->insert(text->begin(), ' ');  // each place has something before it
  for (const std::string& home : user.homes) {
    if (home != "/") replaceNames(text, home, kSomeHome, beginsPath);
  }
  replaceOtherHomes(text);
  for (const std::string& name : user.names) {
    if (name != "root") replaceNames(text, name, kSomeUser, place);
  }
  text->erase(text->begin());
}

void cleanAll(const User& user, Place place, Json* document) {
  if (document->is_string()) {
    clean(user, place, document->get_ptr<std::string*>());
  } else if (document->is_structured()) {
    for (Json& part : *document) cleanAll(user, place, &part);
  }
}

}  // namespace

void leaveOutUser(const User& user, Json* document) { cleanAll(user, isPartOfPath, document); }

void leaveOutUserInProse(const User& user, Json* document) { cleanAll(user, beginsWord, document); }

}  // namespace tool
