#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "http/Exchange.h"

namespace {

using http::Exchange;
using http::ExchangePool;

TEST(ExchangePool, LendsWhatWasUsedLast) {
  ExchangePool pool;
  std::unique_ptr<Exchange> first = pool.take();
  std::unique_ptr<Exchange> second = pool.take();
  const Exchange* const usedLast = second.get();
  pool.give(std::move(first));
  pool.give(std::move(second));

  EXPECT_EQ(pool.take().get(), usedLast);
}

TEST(ExchangePool, KeepsTheMemoryOfOrdinaryAnswers) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->response.body.assign(300000, 'x');
  exchange->response.body = "small";
  pool.give(std::move(exchange));

  const std::string body = pool.takeBody();
  EXPECT_GE(body.capacity(), 300000U);
  EXPECT_EQ(body, "");
}

// A client that never ends the head of its request would hold it.
TEST(ExchangePool, LendsNoMemoryForAnAnswerWithAnExchange) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->response.body.assign(300000, 'x');
  pool.give(std::move(exchange));

  EXPECT_LT(pool.take()->response.body.capacity(), 1000U);
}

TEST(ExchangePool, KeepsTheMemoryOfOrdinaryRequests) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->request.body().assign(10000, 'x');
  pool.give(std::move(exchange));

  EXPECT_GE(pool.take()->request.body().capacity(), 10000U);
}

TEST(ExchangePool, GivesUpTheMemoryOfLargeRequestsAndAnswers) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->request.body().assign(1000000, 'x');
  exchange->response.body.assign(8000000, 'x');
  pool.give(std::move(exchange));

  EXPECT_LT(pool.take()->request.body().capacity(), 1000U);
  EXPECT_EQ(pool.countFreeBytes(), 0U);
}

TEST(ExchangePool, ForgetsWhatTheHandlerNoted) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->memo = 1;
  pool.give(std::move(exchange));

  EXPECT_FALSE(pool.take()->memo.has_value());
}

TEST(ExchangePool, FreesWhatNobodyTookSinceTheLastTrim) {
  ExchangePool pool;
  std::unique_ptr<Exchange> first = pool.take();
  std::unique_ptr<Exchange> second = pool.take();
  pool.give(std::move(first));
  pool.give(std::move(second));
  pool.trim();
  pool.give(pool.take());

  pool.trim();
  EXPECT_EQ(pool.countFree(), 1U);
  pool.trim();
  EXPECT_EQ(pool.countFree(), 0U);
}

TEST(ExchangePool, FreesTheBodiesThatNobodyTookSinceTheLastTrim) {
  ExchangePool pool;
  pool.giveBody(std::string(1000, 'x'));
  pool.trim();
  EXPECT_GE(pool.countFreeBytes(), 1000U);
  pool.trim();
  EXPECT_EQ(pool.countFreeBytes(), 0U);
  EXPECT_EQ(pool.takeBody().capacity(), std::string().capacity());
}

TEST(ExchangePool, KeepsABoundedNumberOfBytes) {
  ExchangePool pool;
  for (int i = 0; i < 30; ++i) {
    pool.giveBody(std::string(1000000, 'x'));
  }
  EXPECT_GE(pool.countFreeBytes(), 1000000U);
  EXPECT_LE(pool.countFreeBytes(), 8U * 1024 * 1024);
}

TEST(ExchangePool, KeepsABoundedNumber) {
  ExchangePool pool;
  std::vector<std::unique_ptr<Exchange>> taken;
  for (int i = 0; i < 100; ++i) {
    taken.push_back(pool.take());
  }
  for (std::unique_ptr<Exchange>& exchange : taken) {
    pool.give(std::move(exchange));
  }

  EXPECT_EQ(pool.countFree(), 32U);
}

}  // namespace
