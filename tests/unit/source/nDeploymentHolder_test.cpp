#include <gtest/gtest.h>

#include <cstring>

#include "source/nDeployment.h"

namespace {

using nZusysapi::Result;

/// One of several references to an object: they share its count, and its identity is the first of them.
struct tFacet final : nZusysapi::Object {
    explicit tFacet(tFacet* owner = nullptr) : owner_(owner == nullptr ? this : owner) {}

    Result queryInterface(const nZusysapi::InterfaceId& id, void** object) override {
        EXPECT_EQ(std::memcmp(&id, "\0\0\0\0\0\0\0\0\xC0\0\0\0\0\0\0\x46", 16), 0);
        if (owner_->result < 0) return owner_->result;
        addReference();
        *object = static_cast<nZusysapi::Object*>(owner_);
        return owner_->result;
    }
    std::uint32_t addReference() override { return ++owner_->references; }
    std::uint32_t release() override { return --owner_->references; }

    std::uint32_t references = 0;
    Result result = 0;

private:
    tFacet* owner_;
};

using tAnyHolder = nDeployment::tHolder<nZusysapi::Object>;

TEST(nDeploymentHolder, ReferencesAnAssignedObjectAndReleasesItOnDestruction) {
    tFacet object;
    {
        tAnyHolder holder;
        EXPECT_EQ(holder.get(), nullptr);
        holder.assign(object);
        EXPECT_EQ(holder.get(), &object);
        EXPECT_EQ(object.references, 1U);
    }
    EXPECT_EQ(object.references, 0U);
}

TEST(nDeploymentHolder, ReleasesTheEarlierObjectWhenAnotherIsAssigned) {
    tFacet earlier;
    tFacet later;
    tAnyHolder holder;
    holder.assign(earlier);
    holder.assign(later);
    EXPECT_EQ(holder.get(), &later);
    EXPECT_EQ(earlier.references, 0U);
    EXPECT_EQ(later.references, 1U);
}

TEST(nDeploymentHolder, KeepsItsReferenceWhenAssignedAnotherOneToTheSameObject) {
    tFacet object;
    tFacet otherReference(&object);
    tAnyHolder holder;
    holder.assign(object);
    holder.assign(otherReference);
    EXPECT_EQ(holder.get(), &object);
    EXPECT_EQ(object.references, 1U);
}

TEST(nDeploymentHolder, DistinguishesObjectsByTheirReferencesWhenOneHidesItsIdentity) {
    for (const Result result : {0, -1, 1}) {
        tFacet hiding;
        tFacet other;
        hiding.result = -1;
        other.result = result;
        EXPECT_TRUE(nDeployment::isSameObject(other, other));
        EXPECT_FALSE(nDeployment::isSameObject(hiding, other));
        EXPECT_FALSE(nDeployment::isSameObject(other, hiding));
        EXPECT_EQ(hiding.references + other.references, 0U);
    }
}

TEST(nDeploymentHolder, KeepsItsObjectWhenACallFails) {
    tFacet held;
    tAnyHolder holder;
    holder.assign(held);
    EXPECT_FALSE(holder.acquire([](nZusysapi::Object**) { return -1; }));
    EXPECT_FALSE(holder.acquire([](nZusysapi::Object**) { return 0; }));
    EXPECT_EQ(holder.get(), &held);
    EXPECT_EQ(held.references, 1U);
}

}  // namespace
