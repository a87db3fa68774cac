#include <gtest/gtest.h>

#include <cstring>

#include "source/nDeployment.h"

namespace {

using nZusysapi::Result;

/// One of several facets of an object: they share its reference count, and the first one is its identity.
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

TEST(nDeploymentHolder, AddsAReferenceAndReleasesItOnDestruction) {
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

TEST(nDeploymentHolder, ReleasesThePreviousObject) {
    tFacet earlier;
    tFacet later;
    tAnyHolder holder;
    holder.assign(earlier);
    holder.assign(later);
    EXPECT_EQ(holder.get(), &later);
    EXPECT_EQ(earlier.references, 0U);
    EXPECT_EQ(later.references, 1U);
}

TEST(nDeploymentHolder, KeepsItsReferenceIfAssignedTheSameObjectAgain) {
    tFacet object;
    tFacet otherReference(&object);
    tAnyHolder holder;
    holder.assign(object);
    holder.assign(otherReference);
    EXPECT_EQ(holder.get(), &object);
    EXPECT_EQ(object.references, 1U);
}

TEST(nDeploymentHolder, ComparesReferencesIfTheObjectsRefuseTheirIdentity) {
    for (const Result refusal : {-1, 1}) {
        tFacet object;
        tFacet other;
        object.result = refusal;
        other.result = refusal;
        EXPECT_TRUE(nDeployment::isSameObject(object, object));
        EXPECT_FALSE(nDeployment::isSameObject(object, other));
        EXPECT_EQ(object.references, 0U);
        EXPECT_EQ(other.references, 0U);
    }
}

TEST(nDeploymentHolder, ComparesReferencesIfOneObjectRefusesItsIdentity) {
    tFacet open;
    tFacet hiding;
    hiding.result = -1;
    EXPECT_FALSE(nDeployment::isSameObject(open, hiding));
    EXPECT_FALSE(nDeployment::isSameObject(hiding, open));
    EXPECT_EQ(open.references, 0U);
    EXPECT_EQ(hiding.references, 0U);
}

TEST(nDeploymentHolder, KeepsItsObjectIfACallFails) {
    tFacet held;
    tAnyHolder holder;
    holder.assign(held);
    EXPECT_FALSE(holder.acquire([](nZusysapi::Object**) { return -1; }));
    EXPECT_FALSE(holder.acquire([](nZusysapi::Object**) { return 0; }));
    EXPECT_EQ(holder.get(), &held);
    EXPECT_EQ(held.references, 1U);
}

}  // namespace
