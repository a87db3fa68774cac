#include "err/ErrorConstants.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::AllOf;
using testing::Field;
using testing::StrEq;
using zuerr::ErrorConstant;

auto isConstant(std::int32_t code, const char* text) {
    return AllOf(Field("code", &ErrorConstant::code, code), Field("text", &ErrorConstant::text, StrEq(text)));
}

TEST(ErrorConstants, AreTheCodesAndTextsThatUsersLookUp) {
    EXPECT_THAT(zuerr::outOfMemory, isConstant(-52000, "-52000"));
    EXPECT_THAT(zuerr::featureUnsupported, isConstant(-52002, "zukesterr_featureUnsupported"));
    EXPECT_THAT(zuerr::softwareFault, isConstant(-52003, "zukesterr_softwareFaultKESTInternalUseOnly"));
    EXPECT_THAT(zuerr::invalidParameter, isConstant(-52005, "zukesterr_invalidParameter"));
    EXPECT_THAT(zuerr::resourceNotFound, isConstant(-52006, "zukesterr_resourceNotFound"));
    EXPECT_THAT(zuerr::statusResourceNotFound, isConstant(-52006, "kestStatusResourceNotFound"));
    EXPECT_THAT(zuerr::osFault, isConstant(-52008, "zukesterr_osFault"));
    EXPECT_THAT(zuerr::insufficientPermissions, isConstant(-52026, "zukesterr_insufficientPermissions"));
    EXPECT_THAT(zuerr::hostComponent, StrEq("zuZiptraRemoteService"));
}

}  // namespace
