#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdarg>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "h/msg_service.h"
#include "host/sbd_host.h"

namespace {

using sbd_host::get_memory_account;
using sbd_host::INTERNAL_ERROR;
using sbd_host::MESSAGE;
using sbd_host::SEVERITY;

// A message as it was posted, with texts of its own.
struct POSTED {
  SEVERITY severity = SEVERITY::DEBUG;
  int number = -1;
  std::string text_template, key, text, module;
};

POSTED copy_of(const MESSAGE& message) {
  return {message.severity, message.number, message.text_template,
          message.key,      message.text,   message.module};
}

// What arrives when the message is posted.
POSTED post(MSG_POST& message) {
  std::vector<POSTED> posted;
  sbd_host::set_message_handler([&](const MESSAGE& got) { posted.push_back(copy_of(got)); });
  message.post(nullptr);
  sbd_host::set_message_handler({});
  EXPECT_EQ(posted.size(), 1U);
  return posted.empty() ? POSTED() : posted.front();
}

template <class... ARGS>
POSTED fill_and_post(const char* message_template, int id, ARGS... args) {
  MSG_E message(nullptr);
  message.fill_args(message_template, id, args...);
  return post(message);
}

// Both the text and the key, which is all that a template's form decides on.
template <class... ARGS>
std::string rendered(const char* message_template, ARGS... args) {
  const POSTED posted = fill_and_post(message_template, 1, args...);
  return posted.text + "|" + posted.key;
}

void fill_debug(MSG_BASE& message, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  message.fill_args(format, arguments);
  va_end(arguments);
}

template <class ACTION>
std::string stderr_of(ACTION action) {
  testing::internal::CaptureStderr();
  action();
  return testing::internal::GetCapturedStderr();
}

class HOST_MESSAGES : public testing::Test {
 protected:
  void TearDown() override {
    sbd_host::set_message_handler({});
    sbd_host::set_internal_error_handler({});
  }
};

// ---- Templates ---------------------------------------------------------------------------------

TEST_F(HOST_MESSAGES, EverythingFilledInArrives) {
  MSG_E message(nullptr);
  message.fill_args("File %1!s! ends in line %2!d!/E_FILE_END", 4711, "a.sbd", -12);
  message.set_module("MODULE");
  const POSTED posted = post(message);
  EXPECT_EQ(posted.severity, SEVERITY::ERROR);
  EXPECT_EQ(posted.number, 4711);
  EXPECT_EQ(posted.text_template, "File %1!s! ends in line %2!d!/E_FILE_END");
  EXPECT_EQ(posted.key, "E_FILE_END");
  EXPECT_EQ(posted.text, "File a.sbd ends in line -12");
  EXPECT_EQ(posted.module, "MODULE");
}

TEST_F(HOST_MESSAGES, SeverityFollowsTheClass) {
  MSG_E error(nullptr);
  MSG_W warning(nullptr);
  MSG_D debug(nullptr);
  EXPECT_EQ(post(error).severity, SEVERITY::ERROR);
  EXPECT_EQ(post(warning).severity, SEVERITY::WARNING);
  EXPECT_EQ(post(debug).severity, SEVERITY::DEBUG);
}

TEST_F(HOST_MESSAGES, ArgumentsMayChangeOrder) {
  EXPECT_EQ(rendered("%2!d! before %1!s!/K", "one", 2), "2 before one|K");
  EXPECT_EQ(rendered("%3!s!%1!d!%2!s!/K", 1, "two", "three"), "three1two|K");
}

TEST_F(HOST_MESSAGES, ArgumentsMayRepeat) {
  EXPECT_EQ(rendered("%1!s!%1!s! %2!d! %1!s! %2!d!/K", "x", 7), "xx 7 x 7|K");
}

TEST_F(HOST_MESSAGES, PositionsMayHaveSeveralDigits) {
  EXPECT_EQ(rendered("%12!d! %11!s! %10!d! %9!s! %8!d! %7!s! %6!d! %5!s! %4!d! %3!s! %2!d! %1!s!/K",
                     "a", 2, "c", 4, "e", 6, "g", 8, "i", 10, "k", 12),
            "12 k 10 i 8 g 6 e 4 c 2 a|K");
}

TEST_F(HOST_MESSAGES, UnmentionedArgumentsAreSkipped) {
  EXPECT_EQ(rendered("%3!d!/K", "unused", "unused", 3), "3|K");
  EXPECT_EQ(rendered("%4!s! %2!d!/K", "unused", 2, static_cast<const char*>(nullptr), "four"),
            "four 2|K");
  EXPECT_EQ(rendered("nothing/K", "unused", 2), "nothing|K");
}

TEST_F(HOST_MESSAGES, NumbersAreRenderedInFull) {
  EXPECT_EQ(rendered("%1!d! %2!d! %3!d!/K", INT_MIN, 0, INT_MAX), "-2147483648 0 2147483647|K");
}

TEST_F(HOST_MESSAGES, NullTextIsNamed) {
  EXPECT_EQ(rendered("<%1!s!>/K", static_cast<const char*>(nullptr)), "<(null)>|K");
}

TEST_F(HOST_MESSAGES, TextsOfArgumentsAreNotInterpreted) {
  EXPECT_EQ(rendered("%1!s! and %2!s!/K", "%2!s!", "%1!s!"), "%2!s! and %1!s!|K");
  EXPECT_EQ(rendered("%1!s!/K", "100% %s %n"), "100% %s %n|K");
  EXPECT_EQ(rendered("%1!s!/K", "/usr/lib/NOT_A_KEY"), "/usr/lib/NOT_A_KEY|K");
  EXPECT_EQ(rendered("in %1!s!", "/usr/lib/NOT_A_KEY"), "in /usr/lib/NOT_A_KEY|");
  // Nor do they complete what the template began.
  EXPECT_EQ(rendered("%%1!s!!s!/K", "1"), "%1!s!|K");
}

TEST_F(HOST_MESSAGES, WhatIsNoPlaceholderIsKept) {
  for (const char* text :
       {"100%", "%", "%%", "% 1!s!", "%s", "%d", "%1", "%1!", "%1!s", "%1s!", "%1!x!", "%1!S!",
        "%!s!", "%0!s!", "%-1!s!", "%100!s!", "%99999999999999999999999999!s!"}) {
    EXPECT_EQ(rendered((std::string(text) + "/K").c_str(), "unused"), std::string(text) + "|K");
    EXPECT_EQ(rendered(text, "unused"), std::string(text) + "|");
  }
  EXPECT_EQ(rendered("%%1!d!%/K", 5), "%5%|K");
  EXPECT_EQ(rendered("%1%1!d!/K", 5), "%15|K");
}

TEST_F(HOST_MESSAGES, PlaceholdersThatDisagreeCountAsNumbers) {
  EXPECT_EQ(rendered("%1!s! %1!d!/K", 5), "5 5|K");
  EXPECT_EQ(rendered("%1!d! %1!s!/K", 5), "5 5|K");
}

TEST_F(HOST_MESSAGES, KeyIsBehindTheLastSlash) {
  EXPECT_EQ(rendered("and/or/KEY_1"), "and/or|KEY_1");
  EXPECT_EQ(rendered("A/B/C"), "A/B|C");
  EXPECT_EQ(rendered("text//K"), "text/|K");
  EXPECT_EQ(rendered("/K"), "|K");
  EXPECT_EQ(rendered("text/_09AZ"), "text|_09AZ");
}

TEST_F(HOST_MESSAGES, TemplateWithoutKeyIsAllText) {
  EXPECT_EQ(rendered(""), "|");
  EXPECT_EQ(rendered("KEY"), "KEY|");
  EXPECT_EQ(rendered("text/"), "text/|");
  EXPECT_EQ(rendered("/"), "/|");
  EXPECT_EQ(rendered("text/key"), "text/key|");
  EXPECT_EQ(rendered("text/KEY "), "text/KEY |");
  EXPECT_EQ(rendered("text/A KEY"), "text/A KEY|");
  EXPECT_EQ(rendered("text/KEY-1"), "text/KEY-1|");
  EXPECT_EQ(rendered("text/KEY/no key"), "text/KEY/no key|");
  EXPECT_EQ(rendered("%1!s!/%2!s!", "TEXT", "KEY"), "TEXT/KEY|");
}

TEST_F(HOST_MESSAGES, NullTemplateIsEmpty) {
  EXPECT_EQ(rendered(nullptr), "|");
  EXPECT_EQ(fill_and_post(nullptr, 5).text_template, "");
}

// Which no character set of the "C" locale can show.
TEST_F(HOST_MESSAGES, FormatsThatCantBeRenderedStandForThemselves) {
  MSG_D message(nullptr);
  fill_debug(message, "a %ls b", L"\x1F600");
  EXPECT_EQ(post(message).text, "a %ls b");
}

TEST_F(HOST_MESSAGES, LongTextsAreComplete) {
  const std::string name(10000, 'n');
  EXPECT_EQ(rendered("<%1!s!%1!s!>/K", name.c_str()), "<" + name + name + ">|K");
}

// ---- Message objects ---------------------------------------------------------------------------

TEST_F(HOST_MESSAGES, TextsAreCopiedWhenFilledIn) {
  std::string name = "before";
  MSG_E message(nullptr);
  std::string module = "MODULE";
  message.fill_args("%1!s!/K", 1, name.c_str());
  message.set_module(module.c_str());
  name.assign("after!");
  module.assign("NOTHIN");
  EXPECT_EQ(post(message).text, "before");
  EXPECT_EQ(post(message).module, "MODULE");
}

TEST_F(HOST_MESSAGES, UnfilledMessageIsEmpty) {
  MSG_W message(nullptr);
  const POSTED posted = post(message);
  EXPECT_EQ(posted.number, 0);
  EXPECT_EQ(posted.text_template + posted.key + posted.text + posted.module, "");
}

TEST_F(HOST_MESSAGES, MessageMayBeFilledAgain) {
  MSG_E message(nullptr);
  message.fill_args("one %1!s!/ONE", 1, "x");
  message.fill_args("two %1!d!/TWO", 2, 22);
  const POSTED second = post(message);
  EXPECT_EQ(second.number, 2);
  EXPECT_EQ(second.text, "two 22");
  EXPECT_EQ(second.key, "TWO");

  fill_debug(message, "three %d", 3);
  const POSTED third = post(message);
  EXPECT_EQ(third.number, 0);
  EXPECT_EQ(third.text, "three 3");
  EXPECT_EQ(third.key, "");
  EXPECT_EQ(third.text_template, "three %d");
}

TEST_F(HOST_MESSAGES, ModuleMayBeNull) {
  MSG_E message(nullptr);
  message.set_module("MODULE");
  message.set_module(nullptr);
  EXPECT_EQ(post(message).module, "");
}

TEST_F(HOST_MESSAGES, MessagesLiveInTheMemoryOfTheirModule) {
  {
    const std::unique_ptr<MSG_POST> error(new ("MSG_OWNER") MSG_E(nullptr));
    const std::unique_ptr<MSG_BASE> warning(new ("MSG_OWNER") MSG_W(nullptr));
    const std::unique_ptr<MSG_D> debug(new ("MSG_OWNER") MSG_D(nullptr));
    warning->fill_args("%1!s!/K", 1, std::string(1000, 'x').c_str());
    fill_debug(*debug, "%1000d", 1);
    // The texts are the host's.
    EXPECT_EQ(get_memory_account("MSG_OWNER").live_blocks, 3U);
    EXPECT_EQ(get_memory_account("MSG_OWNER").live_bytes,
              sizeof(MSG_E) + sizeof(MSG_W) + sizeof(MSG_D));
    post(*error);
  }
  EXPECT_EQ(get_memory_account("MSG_OWNER").live_blocks, 0U);
  EXPECT_EQ(get_memory_account("MSG_OWNER").live_bytes, 0U);
}

TEST_F(HOST_MESSAGES, ExhaustionIsPassedOnToWhoMakesAMessage) {
  sbd_host::fail_allocation("MSG_FAILS", 1, false);
  EXPECT_THROW(static_cast<void>(new ("MSG_FAILS") MSG_E(nullptr)), std::bad_alloc);
  EXPECT_EQ(get_memory_account("MSG_FAILS").live_blocks, 0U);
}

TEST_F(HOST_MESSAGES, MessageWhoseConstructorThrowsIsReleased) {
  struct THROWING : MSG_E {
    THROWING() : MSG_E(nullptr) { throw 1; }
  };
  EXPECT_THROW(static_cast<void>(new ("MSG_THROWS") THROWING), int);
  EXPECT_EQ(get_memory_account("MSG_THROWS").total_allocations, 1U);
  EXPECT_EQ(get_memory_account("MSG_THROWS").live_blocks, 0U);
}

TEST_F(HOST_MESSAGES, DebugMessageFollowsVprintf) {
  MSG_D message(nullptr);
  fill_debug(message, "%s has %05d%% of %.2f %c/NO_KEY", "x", 42, 1.5, 'c');
  const POSTED posted = post(message);
  EXPECT_EQ(posted.severity, SEVERITY::DEBUG);
  EXPECT_EQ(posted.number, 0);
  EXPECT_EQ(posted.key, "");
  EXPECT_EQ(posted.text, "x has 00042% of 1.50 c/NO_KEY");
  EXPECT_EQ(posted.text_template, "%s has %05d%% of %.2f %c/NO_KEY");
}

TEST_F(HOST_MESSAGES, DebugMessageMayBeEmptyOrLong) {
  MSG_D message(nullptr);
  fill_debug(message, "%s", "");
  EXPECT_EQ(post(message).text, "");
  fill_debug(message, nullptr);
  EXPECT_EQ(post(message).text, "");
  const std::string text(5000, 'y');
  fill_debug(message, "<%s>", text.c_str());
  EXPECT_EQ(post(message).text, "<" + text + ">");
}

// ---- Delivery ----------------------------------------------------------------------------------

TEST_F(HOST_MESSAGES, DefaultPrintsOneLine) {
  MSG_E error(nullptr);
  error.fill_args("Broken: %1!s!/E_BROKEN", 1, "100%s");
  MSG_W warning(nullptr);
  warning.fill_args("Odd number %1!d!/W_ODD", 2, 7);
  MSG_D debug(nullptr);
  fill_debug(debug, "at %d", 9);
  EXPECT_EQ(stderr_of([&] { error.post(nullptr); }), "error: Broken: 100%s [E_BROKEN]\n");
  EXPECT_EQ(stderr_of([&] { warning.post(nullptr); }), "warning: Odd number 7 [W_ODD]\n");
  EXPECT_EQ(stderr_of([&] { debug.post(nullptr); }), "debug: at 9\n");
}

TEST_F(HOST_MESSAGES, DefaultKeepsTheLineInOnePiece) {
  MSG_E error(nullptr);
  error.fill_args("a\r\nb%1!s!c/K", 1, "\n");
  EXPECT_EQ(stderr_of([&] { error.post(nullptr); }), "error: a  b c [K]\n");
}

TEST_F(HOST_MESSAGES, DefaultPrintsUnfilledMessage) {
  MSG_E error(nullptr);
  EXPECT_EQ(stderr_of([&] { error.post(nullptr); }), "error: \n");
}

TEST_F(HOST_MESSAGES, HandlerIsReplacedAndReset) {
  MSG_E message(nullptr);
  message.fill_args("text/K", 1);
  int first_calls = 0;
  int second_calls = 0;
  sbd_host::set_message_handler([&](const MESSAGE&) { first_calls++; });
  EXPECT_EQ(stderr_of([&] { message.post(nullptr); }), "");
  sbd_host::set_message_handler([&](const MESSAGE&) { second_calls++; });
  EXPECT_EQ(stderr_of([&] { message.post(nullptr); }), "");
  sbd_host::set_message_handler({});
  EXPECT_EQ(stderr_of([&] { message.post(nullptr); }), "error: text [K]\n");
  EXPECT_EQ(first_calls, 1);
  EXPECT_EQ(second_calls, 1);
}

TEST_F(HOST_MESSAGES, HandlerMayReplaceItselfAndPost) {
  MSG_E message(nullptr);
  message.fill_args("outer/K", 1);
  std::vector<std::string> texts;
  auto owned = std::make_shared<std::string>("still alive");
  sbd_host::set_message_handler([&texts, owned](const MESSAGE& got) {
    texts.emplace_back(got.text);
    sbd_host::set_message_handler(
        [&texts](const MESSAGE& inner) { texts.emplace_back(inner.text); });
    MSG_W nested(nullptr);
    nested.fill_args("inner/K", 2);
    nested.post(nullptr);
    texts.emplace_back(*owned);
  });
  message.post(nullptr);
  message.post(nullptr);
  EXPECT_EQ(texts, (std::vector<std::string>{"outer", "inner", "still alive", "outer"}));
  EXPECT_EQ(owned.use_count(), 1);
}

TEST_F(HOST_MESSAGES, LinesOfThreadsDoNotMix) {
  const int count = 200;
  const std::string output = stderr_of([&] {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; thread++) {
      threads.emplace_back([=] {
        MSG_E message(nullptr);
        for (int i = 0; i < count; i++) {
          message.fill_args("thread %1!d! line %2!d!/K", 1, thread, i);
          message.post(nullptr);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  });

  std::set<std::string> expected;
  for (int i = 0; i < 4 * count; i++) {
    expected.insert("error: thread " + std::to_string(i / count) + " line " +
                    std::to_string(i % count) + " [K]");
  }
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) EXPECT_EQ(expected.erase(line), 1U) << line;
  EXPECT_TRUE(expected.empty());
}

TEST_F(HOST_MESSAGES, HandlersMayBeInstalledMeanwhile) {
  std::atomic<int> calls{0};
  const auto install = [&] {
    sbd_host::set_message_handler([&](const MESSAGE&) { ++calls; });
    sbd_host::set_internal_error_handler([&](const INTERNAL_ERROR&) { ++calls; });
  };
  install();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; thread++) {
    threads.emplace_back([] {
      MSG_W message(nullptr);
      for (int i = 0; i < 500; i++) {
        message.post(nullptr);
        MSG_INTERNAL_ERROR::report("c", "m", "s", i);
      }
    });
  }
  for (int i = 0; i < 500; i++) install();
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(calls, 4000);
}

// ---- Internal errors ---------------------------------------------------------------------------

TEST_F(HOST_MESSAGES, InternalErrorReachesItsHandler) {
  std::vector<std::string> got;
  sbd_host::set_internal_error_handler([&](const INTERNAL_ERROR& error) {
    got = {error.condition, error.module, error.source, std::to_string(error.line)};
  });
  EXPECT_EQ(stderr_of([] { MSG_INTERNAL_ERROR::report("a != b", "MODULE", "file", 42); }), "");
  EXPECT_EQ(got, (std::vector<std::string>{"a != b", "MODULE", "file", "42"}));
}

TEST_F(HOST_MESSAGES, InternalErrorIsPrintedByDefault) {
  const auto report = [] { MSG_INTERNAL_ERROR::report("a % b", "MODULE", "file", 42); };
  EXPECT_EQ(stderr_of(report), "internal error: a % b (MODULE, file:42)\n");
  sbd_host::set_internal_error_handler([](const INTERNAL_ERROR&) {});
  EXPECT_EQ(stderr_of(report), "");
  sbd_host::set_internal_error_handler({});
  EXPECT_EQ(stderr_of(report), "internal error: a % b (MODULE, file:42)\n");
}

TEST_F(HOST_MESSAGES, NullTextsOfInternalErrorAreEmpty) {
  const auto report = [] { MSG_INTERNAL_ERROR::report(nullptr, nullptr, nullptr, 0); };
  EXPECT_EQ(stderr_of(report), "internal error:  (, :0)\n");
  std::string got = "not called";
  sbd_host::set_internal_error_handler(
      [&](const INTERNAL_ERROR& e) { got = std::string(e.condition) + e.module + e.source; });
  report();
  EXPECT_EQ(got, "");
}

}  // namespace
