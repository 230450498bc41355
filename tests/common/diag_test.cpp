#include <kel/diag.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "testing/test.h"
#include "testing/threads.h"

namespace {

using namespace test_support;
using Diag::DiagStorage;
using Diag::MessageType;

DiagStorage Message(MessageType type, std::string text) {
  return DiagStorage({}, type, std::move(text), {});
}

/// A service of its own for each test: none can leave its handler to another.
class DiagServiceTest : public testing::Test {
 protected:
  void Post(const std::string& text) { service_.PostImpl(Message(MessageType::kInfo, text)); }

  Diag::DiagService::Handler Recorder(std::vector<std::string>& texts) {
    return [&texts](const DiagStorage& message) { texts.push_back(message.text()); };
  }

  Diag::DiagService service_;
};

TEST(DiagStorage, MessageType_Values_AreThoseOfTheSuite) {
  EXPECT_THAT((std::vector<int>{static_cast<int>(MessageType::kInfo),
                                static_cast<int>(MessageType::kWarning),
                                static_cast<int>(MessageType::kError)}),
              ElementsAre(0, 1, 2));
}

TEST(DiagStorage, Construct_FourParts_GivesThemBack) {
  const char identifier[] = "DB-7";
  const char second[] = "details";
  const DiagStorage message({4, identifier}, MessageType::kWarning, "low on pins", {7, second});
  EXPECT_EQ(message.identifier().data, identifier);
  EXPECT_EQ(message.identifier().size, 4u);
  EXPECT_EQ(message.type(), MessageType::kWarning);
  EXPECT_EQ(message.text(), "low on pins");
  EXPECT_EQ(message.second().data, second);
  EXPECT_EQ(message.second().size, 7u);
}

TEST(DiagStorage, Construct_Text_IsTakenOverNotCopied) {
  std::string text(100, 'x');
  const auto storage = reinterpret_cast<std::uintptr_t>(text.data());
  const DiagStorage message({}, MessageType::kInfo, std::move(text), {});
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(message.text().data()), storage);
}

TEST(DiagService, GlobalInst_CalledInSeveralThreads_IsOneObject) {
  const Diag::DiagService* other = nullptr;
  std::thread([&other] { other = &Diag::GlobalInst(); }).join();
  EXPECT_EQ(other, &Diag::GlobalInst());
}

TEST_F(DiagServiceTest, PostImpl_NoHandler_WritesOneLineWithSeverityToStandardError) {
  testing::internal::CaptureStderr();
  for (const MessageType type : {MessageType::kInfo, MessageType::kWarning, MessageType::kError}) {
    service_.PostImpl(Message(type, "100 % of {} – größer"));
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "info: 100 % of {} – größer\n"
            "warning: 100 % of {} – größer\n"
            "error: 100 % of {} – größer\n");
}

TEST_F(DiagServiceTest, PostImpl_Handler_GetsTheMessageItselfInPlaceOfTheConsole) {
  const DiagStorage message = Message(MessageType::kError, "low on pins");
  std::vector<const DiagStorage*> received;
  service_.SetHandler([&received](const DiagStorage& posted) { received.push_back(&posted); });
  testing::internal::CaptureStderr();
  service_.PostImpl(message);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(received, ElementsAre(&message));
}

TEST_F(DiagServiceTest, SetHandler_Replaced_ReturnsTheFormerAndOnlyTheNewOneIsCalled) {
  std::vector<std::string> first;
  std::vector<std::string> second;
  EXPECT_FALSE(service_.SetHandler(Recorder(first)));
  const auto former = service_.SetHandler(Recorder(second));
  Post("low on pins");
  EXPECT_THAT(first, IsEmpty());
  EXPECT_THAT(second, ElementsAre("low on pins"));
  service_.SetHandler(former);
  Post("low on nets");
  EXPECT_THAT(first, ElementsAre("low on nets"));
}

TEST_F(DiagServiceTest, SetHandler_Empty_RestoresTheConsole) {
  service_.SetHandler([](const DiagStorage&) {});
  service_.SetHandler({});
  testing::internal::CaptureStderr();
  Post("low on pins");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "info: low on pins\n");
}

TEST_F(DiagServiceTest, PostImpl_HandlerThrows_ReachesTheCallerAndLeavesAUsableService) {
  std::vector<std::string> texts;
  service_.SetHandler([](const DiagStorage&) { throw std::runtime_error("log is full"); });
  EXPECT_THROW(Post("first"), std::runtime_error);
  EXPECT_THROW(Post("second"), std::runtime_error);
  service_.SetHandler(Recorder(texts));
  Post("third");
  EXPECT_THAT(texts, ElementsAre("third"));
}

TEST_F(DiagServiceTest, PostImpl_HandlerPostsAndReplacesItself_NextMessageGoesToTheReplacement) {
  std::vector<std::string> first;
  std::vector<std::string> second;
  service_.SetHandler([&](const DiagStorage& message) {
    if (message.text() == "outer") Post("inner");
    service_.SetHandler(Recorder(second));
    first.push_back(message.text());  // The handler is still whole after its replacement.
  });
  Post("outer");
  Post("next");
  EXPECT_THAT(first, ElementsAre("inner", "outer"));
  EXPECT_THAT(second, ElementsAre("next"));
}

constexpr int kPostingThreads = 8;
constexpr int kPostsPerThread = 500;

std::string TextOf(int thread, int post) {
  return "thread " + std::to_string(thread) + " post " + std::to_string(post);
}

void PostFromAllThreads(Diag::DiagService& service) {
  test_support::InThreads(kPostingThreads, [&](int thread) {
    for (int post = 0; post < kPostsPerThread; ++post) {
      service.PostImpl(Message(MessageType::kInfo, TextOf(thread, post)));
    }
  });
}

std::vector<std::string> Sorted(std::vector<std::string> texts) {
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::vector<std::string> AllTextsSorted() {
  std::vector<std::string> texts;
  for (int thread = 0; thread < kPostingThreads; ++thread) {
    for (int post = 0; post < kPostsPerThread; ++post) texts.push_back(TextOf(thread, post));
  }
  return Sorted(std::move(texts));
}

TEST_F(DiagServiceTest, PostImpl_EightThreadsWithHandler_EveryMessageArrivesOnce) {
  std::mutex mutex;
  std::vector<std::string> texts;
  service_.SetHandler([&](const DiagStorage& message) {
    const std::lock_guard<std::mutex> lock(mutex);
    texts.push_back(message.text());
  });
  PostFromAllThreads(service_);
  EXPECT_EQ(Sorted(texts), AllTextsSorted());
}

TEST_F(DiagServiceTest, PostImpl_EightThreadsOnTheConsole_LinesAreNotMixed) {
  testing::internal::CaptureStderr();
  PostFromAllThreads(service_);
  std::istringstream written(testing::internal::GetCapturedStderr());
  std::vector<std::string> texts;
  for (std::string line; std::getline(written, line);) {
    texts.push_back(line.substr(line.find(' ') + 1));
  }
  EXPECT_EQ(Sorted(texts), AllTextsSorted());
}

TEST_F(DiagServiceTest, SetHandler_WhileOtherThreadsPost_EveryMessageReachesOneHandler) {
  std::atomic<int> first{0};
  std::atomic<int> second{0};
  const auto count_in = [](std::atomic<int>& count) {
    return [&count](const DiagStorage&) { ++count; };
  };
  service_.SetHandler(count_in(first));
  std::thread changer([&] {
    for (int i = 0; i < kPostsPerThread; ++i) {
      service_.SetHandler(i % 2 == 0 ? count_in(second) : count_in(first));
    }
  });
  PostFromAllThreads(service_);
  changer.join();
  EXPECT_EQ(first + second, kPostingThreads * kPostsPerThread);
}

}  // namespace
