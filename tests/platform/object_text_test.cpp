#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <vistrane/platform/object.h>
#include <vistrane/platform/text.h>

namespace {

class Shape : public CObject {
  public:
    static CObject* Create() { return new Shape; }
    const CRuntimeClass* GetRuntimeClass() const override { return &classShape; }
    static const CRuntimeClass classShape;
};
const CRuntimeClass Shape::classShape = {"Shape", sizeof(Shape), 1, &Shape::Create,
                                         &CObject::classCObject};

class Circle : public Shape {
  public:
    const CRuntimeClass* GetRuntimeClass() const override { return &classCircle; }
    static const CRuntimeClass classCircle;
};
const CRuntimeClass Circle::classCircle = {"Circle", sizeof(Circle), 0xFFFF, nullptr,
                                           &Shape::classShape};

}  // namespace

TEST(CObject, KindWalksTheBaseChainAndSchemaDecidesSerialisability) {
    const Circle circle;
    EXPECT_TRUE(circle.IsKindOf(&Shape::classShape));
    EXPECT_TRUE(circle.IsKindOf(&CObject::classCObject));
    EXPECT_FALSE(circle.IsKindOf(nullptr));
    EXPECT_FALSE(circle.IsSerializable());
    const std::unique_ptr<CObject> shape(Shape::classShape.CreateObject());
    ASSERT_NE(shape, nullptr);
    EXPECT_FALSE(shape->IsKindOf(&Circle::classCircle));
    EXPECT_TRUE(shape->IsSerializable());
    EXPECT_EQ(Circle::classCircle.CreateObject(), nullptr);
    EXPECT_EQ(CObject::classCObject.CreateObject(), nullptr);
}

TEST(CString, FormatFindLeftAndMid) {
    CString s;
    s.Format("<%s>", std::string(5000, 'q').c_str());
    EXPECT_EQ(s.GetLength(), 5002);
    EXPECT_EQ(s.GetAt(5001), '>');
    s.Format("%d.%s.c", 42, "b");
    EXPECT_EQ(s, CString("42.b.c"));
    EXPECT_EQ(s.Find('.', 3), 4);
    EXPECT_EQ(s.Find('.', 99), -1);
    EXPECT_EQ(s.Left(99), s);
    EXPECT_TRUE(s.Left(-1).IsEmpty());
    EXPECT_EQ(s.Mid(3, 1), CString("b"));
    EXPECT_EQ(s.Mid(-3, 2), CString("42"));
    EXPECT_TRUE(s.Mid(9).IsEmpty());
    CString joined = CString(nullptr) + "x";
    joined += static_cast<const char*>(nullptr);
    EXPECT_EQ(joined, CString("x"));
}
