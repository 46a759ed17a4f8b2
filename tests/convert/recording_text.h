#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kiv::test {

// Says a recording in the words of the domain and yields its text, and that of the raw recording it
// could have been made from.
class recording {
 public:
  explicit recording(int format = 3);

  struct frame {
    std::string function;  // empty: not known
    std::string file = {};
    unsigned line = 0;
  };
  using number = std::uint64_t;

  // An instruction of a module, innermost inlined function first, called from a stack (0: nobody).
  // Gives the stack's number.
  number call(std::string_view module, const std::vector<frame>& inlined, number caller = 0);
  // Functions without a file, outermost first, all in the module "app".
  number calls(std::initializer_list<std::string_view> functions);
  // The number under which blocks of that size are made with that stack.
  number allocation(std::uint64_t size, number stack);

  // A block is made; `address` is for the raw recording.
  recording& make(number allocation, std::uint64_t address = 0);
  recording& end(number allocation, std::uint64_t address = 0);
  // Made and ended, several times.
  recording& pass(number allocation, int times);
  recording& time(std::uint64_t milliseconds);
  recording& resident(std::uint64_t pages);
  recording& line(std::string_view text);  // as it stands

  std::size_t lines() const;  // so far
  std::string text() const;   // with the recorder's closing words, of an orderly end
  std::string cut() const { return text_; }
  std::string raw_text() const { return raw_; }

 private:
  number string(std::string_view text);

  int format_;
  std::string text_, raw_;
  std::map<std::string, number, std::less<>> strings_;
  number instructions_ = 0, stacks_ = 0;
  std::vector<std::uint64_t> sizes_;
  std::uint64_t resident_ = 0;
};

}  // namespace kiv::test
