#include "orncommon/core/componentsmgr.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Orn::Core;

namespace {

struct INamed
{
    virtual ~INamed() = default;
    virtual int number() const = 0;
};

struct Service : QObject, INamed
{
    explicit Service(int number) : m_number(number) {}
    ~Service() override
    {
        if (atEnd)
            atEnd();
    }
    int number() const override { return m_number; }
    std::function<void()> atEnd;

private:
    int m_number;
};

} // namespace

TEST(ComponentsTable, FindsObjectsByInterfaceInOrderOfAddition)
{
    ComponentsTable table;
    EXPECT_FALSE(table.getFirst<INamed>());
    const auto first = QSharedPointer<Service>::create(1);
    const auto second = QSharedPointer<Service>::create(2);
    table.append(QSharedPointer<QObject>::create());
    table.append(first); // after the interface was asked for
    table.append(second);
    table.append({});
    ASSERT_TRUE(table.getFirst<INamed>());
    EXPECT_EQ(table.getFirst<INamed>()->number(), 1);
    EXPECT_EQ(table.getAll<INamed>().size(), 2);
    EXPECT_EQ(table.getAll<QObject>().size(), 3);

    table.append(first);
    table.removeOne(first); // one entry of the two
    EXPECT_EQ(table.getAll<INamed>().at(0)->number(), 2);
    EXPECT_EQ(table.getAll<INamed>().at(1)->number(), 1);
    table.removeOne(first);
    table.removeOne(second);
    EXPECT_FALSE(table.getFirst<INamed>());
}

TEST(ComponentsTable, ClearReleasesBackwardsWithTheLockOpen)
{
    QMutex mutex; // not recursive: a destructor that runs under the lock could not take it
    ComponentsTable table;
    QList<int> order;
    for (int number : {1, 2, 3}) {
        const auto service = QSharedPointer<Service>::create(number);
        service->atEnd = [&, number] {
            EXPECT_TRUE(mutex.tryLock());
            mutex.unlock();
            EXPECT_FALSE(table.getFirst<INamed>());
            order << number;
        };
        table.append(service);
    }
    EXPECT_TRUE(table.getFirst<INamed>());
    table.clear(mutex);
    EXPECT_EQ(order, QList<int>({3, 2, 1}));
}
