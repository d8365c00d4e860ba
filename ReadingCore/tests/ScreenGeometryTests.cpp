#include "lectorbell/ScreenGeometry.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace lectorbell {
namespace {

TEST(ScreenGeometry, ConstructionStandardisesNegativeSizes) {
    EXPECT_EQ(ScreenRect(10, 10, -4, 6), ScreenRect(6, 10, 4, 6));
    EXPECT_EQ(ScreenRect(10, 10, 4, -6), ScreenRect(10, 4, 4, 6));
    EXPECT_EQ(ScreenRect(1, 2, 3, 4).united(ScreenRect(10, 20, -2, -2)), ScreenRect(1, 2, 9, 18));
}

TEST(ScreenGeometry, ContainsIncludesOnlyTopAndLeftEdges) {
    ScreenRect r{0, 0, 10, 10};
    struct Case {
        ScreenPoint p;
        bool inside;
    };
    const Case cases[] = {{{0, 0}, true},   {{9.99, 9.99}, true}, {{10, 5}, false},
                          {{5, 10}, false}, {{-0.01, 5}, false},  {{NAN, 5}, false}};
    for (const Case& c : cases) {
        EXPECT_EQ(r.contains(c.p), c.inside) << c.p.x << "," << c.p.y;
    }
}

TEST(ScreenGeometry, Distances) {
    ScreenRect r{10, 20, 30, 40};
    EXPECT_EQ(r.horizontalDistance({25, 1000}), 0);
    EXPECT_EQ(r.horizontalDistance({4, 0}), 6);
    EXPECT_EQ(r.horizontalDistance({45, 0}), 5);
    EXPECT_EQ(r.verticalDistance({1000, 30}), 0);
    EXPECT_EQ(r.verticalDistance({0, 15}), 5);
    EXPECT_EQ(r.verticalDistance({0, 70}), 10);
}

TEST(ScreenGeometry, OverlapAndIntersectionOverUnion) {
    ScreenRect a{0, 0, 10, 10};
    struct Case {
        ScreenRect b;
        double hOverlap;
        double vOverlap;
        double iou;
    };
    const Case cases[] = {
        {{10, 0, 10, 10}, 0, 10, 0}, // touching along an edge
        {{0, 0, 10, 10}, 10, 10, 1}, // identical
        {{5, 0, 10, 10}, 5, 10, 50.0 / 150.0},
        {{20, 20, 5, 5}, 0, 0, 0}, // apart
        {{2, 2, 0, 0}, 0, 0, 0},   // empty rectangle inside
    };
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(a.horizontalOverlap(c.b), c.hOverlap);
        EXPECT_DOUBLE_EQ(a.verticalOverlap(c.b), c.vOverlap);
        EXPECT_DOUBLE_EQ(a.intersectionOverUnion(c.b), c.iou);
    }
    EXPECT_EQ(a.intersectionOverUnion(ScreenRect{NAN, 0, 10, 10}), 0);
}

TEST(ScreenGeometry, Mapping) {
    EXPECT_EQ(GeometryMapper::screenPointFromCocoa({5, 0}, 900), (ScreenPoint{5, 900}));
    EXPECT_EQ(GeometryMapper::screenRectFromCocoa(ScreenRect{10, 100, 50, 20}, 900),
              ScreenRect(10, 780, 50, 20));
    ScreenRect area{100, 200, 400, 300};
    EXPECT_EQ(GeometryMapper::screenRectFromVisionNormalized(ScreenRect{0, 0, 1, 1}, area), area);
    ScreenRect topTenth =
        GeometryMapper::screenRectFromVisionNormalized(ScreenRect{0, 0.9, 1, 0.1}, area);
    EXPECT_NEAR(topTenth.minY(), 200, 1e-9);
    EXPECT_NEAR(topTenth.height(), 30, 1e-9);
    EXPECT_NEAR(topTenth.width(), 400, 1e-9);
}

TEST(ScreenGeometry, MedianTakesUpperMiddle) {
    EXPECT_EQ(median({3, 1, 2, 4}), 3);
    EXPECT_EQ(median({}), 1.0);
    EXPECT_EQ(median({5}), 5);
    EXPECT_EQ(median({9, 7, 8}), 8);
    // NaN sorts last instead of breaking the sort.
    EXPECT_EQ(median({NAN, 2, 1}), 2);
    EXPECT_EQ(median({std::numeric_limits<double>::infinity(), 1, 2}), 2);
}

} // namespace
} // namespace lectorbell
