// ConnectorFormat (gluing a connector's ends to other shapes) and Adjustments (the yellow handles
// of a shape, such as the position of an elbow connector's middle segment).
#include "sheethost/shape_geometry.h"
#include "sheethost/shape_objects.h"
#include "sheethost/shape_sheet.h"

namespace sheethost {
namespace {

using EndOf = std::optional<ConnectorEnd> Shape::*;

class ConnectorFormatObject final : public DispatchObjectOf<ConnectorFormatObject> {
  public:
    explicit ConnectorFormatObject(ShapeHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "ConnectorFormat"; }
    std::string Describe() const override { return handle_.Describe(TypeName()); }

    static const MemberTable<ConnectorFormatObject>& Members() {
        static const MemberTable<ConnectorFormatObject> members{
            {"BeginConnect", [](ConnectorFormatObject& self,
                                Invocation& call) { self.Connect(call, &Shape::beginConnection); }},
            {"EndConnect", [](ConnectorFormatObject& self,
                              Invocation& call) { self.Connect(call, &Shape::endConnection); }},
            {"BeginDisconnect",
             [](ConnectorFormatObject& self, Invocation& call) {
                 self.Disconnect(call, &Shape::beginConnection);
             }},
            {"EndDisconnect",
             [](ConnectorFormatObject& self, Invocation& call) {
                 self.Disconnect(call, &Shape::endConnection);
             }},
            {"BeginConnected",
             [](ConnectorFormatObject& self, Invocation& call) {
                 self.Connected(call, &Shape::beginConnection);
             }},
            {"EndConnected", [](ConnectorFormatObject& self,
                                Invocation& call) { self.Connected(call, &Shape::endConnection); }},
            {"BeginConnectedShape",
             [](ConnectorFormatObject& self, Invocation& call) {
                 self.ConnectedShape(call, &Shape::beginConnection);
             }},
            {"EndConnectedShape",
             [](ConnectorFormatObject& self, Invocation& call) {
                 self.ConnectedShape(call, &Shape::endConnection);
             }},
            {"BeginConnectionSite",
             [](ConnectorFormatObject& self, Invocation& call) {
                 self.ConnectionSite(call, &Shape::beginConnection);
             }},
            {"EndConnectionSite",
             [](ConnectorFormatObject& self, Invocation& call) {
                 self.ConnectionSite(call, &Shape::endConnection);
             }},
            {"Type", [](ConnectorFormatObject& self, Invocation& call) { self.Type(call); }},
        };
        return members;
    }

  private:
    // The glue must be to another shape of the same sheet, at one of its sites.
    void Connect(Invocation& call, EndOf end) {
        call.ExpectCount(2, 2);
        Shape& connector = handle_.Live();
        const std::shared_ptr<Shape> target = ShapeOf(call.Object(0));
        const int site = call.Integer(1);
        if (!target || FindShapeById(*handle_.sheet, target->id) != target ||
            target.get() == &connector) {
            Raise("The specified shape cannot be connected to.");
        }
        if (site < 1 || site > ConnectionSiteCount(*target)) RaiseOutOfRange();
        handle_.sheet->shapes.Glue(connector, end, ConnectorEnd{target->id, site});
        RerouteConnector(connector, handle_.sheet->shapes);
        call.ReturnEmpty();
    }

    void Disconnect(Invocation& call, EndOf end) {
        call.ExpectCount(0, 0);
        handle_.sheet->shapes.Glue(handle_.Live(), end, std::nullopt);
        call.ReturnEmpty();
    }

    void Connected(Invocation& call, EndOf end) {
        ReadOnly(call);
        call.ExpectCount(0, 0);
        call.ReturnInteger((handle_.Live().*end).has_value() ? -1 : 0);
    }

    const ConnectorEnd& Glued(EndOf end) {
        const std::optional<ConnectorEnd>& glued = handle_.Live().*end;
        if (!glued) Raise("This connector end is not connected.");
        return *glued;
    }

    void ConnectedShape(Invocation& call, EndOf end) {
        ReadOnly(call);
        call.ExpectCount(0, 0);
        const std::shared_ptr<Shape> target = FindShapeById(*handle_.sheet, Glued(end).shapeId);
        call.ReturnObject(NewShapeObject(handle_.book, handle_.sheet, target));
    }

    void ConnectionSite(Invocation& call, EndOf end) {
        ReadOnly(call);
        call.ExpectCount(0, 0);
        call.ReturnInteger(Glued(end).site);
    }

    // Changing the kind of connector gives it the adjustments of the new kind.
    void Type(Invocation& call) {
        Shape& connector = handle_.Live();
        int type = *connector.connectorType;
        IntegerProperty(call, type);
        if (!call.IsPut()) return;
        if (type < mso::kConnectorStraight || type > mso::kConnectorCurve) RaiseOutOfRange();
        connector.connectorType = type;
        connector.adjustments =
            type == mso::kConnectorStraight ? std::vector<double>{} : std::vector<double>{0.5};
        RerouteConnector(connector, handle_.sheet->shapes);
    }

    ShapeHandle handle_;
};

class AdjustmentsObject final : public DispatchObjectOf<AdjustmentsObject> {
  public:
    explicit AdjustmentsObject(ShapeHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "Adjustments"; }
    std::string Describe() const override { return handle_.Describe(TypeName()); }

    static const MemberTable<AdjustmentsObject>& Members() {
        static const MemberTable<AdjustmentsObject> members{
            {
                {"Item", [](AdjustmentsObject& self, Invocation& call) { self.Item(call); }},
                {"Count",
                 [](AdjustmentsObject& self, Invocation& call) {
                     ReadOnly(call);
                     call.ExpectCount(0, 0);
                     call.ReturnInteger(static_cast<int>(self.handle_.Live().adjustments.size()));
                 }},
            },
            "Item"};
        return members;
    }

  private:
    void Item(Invocation& call) {
        call.ExpectCount(1, 1);
        std::vector<double>& adjustments = handle_.Live().adjustments;
        const int index = call.Integer(0);
        if (index < 1 || static_cast<std::size_t>(index) > adjustments.size()) {
            return call.Decline(BadIndex());
        }
        double& value = adjustments[static_cast<std::size_t>(index) - 1];
        if (call.IsPut()) {
            value = call.PutNumber();
        } else {
            call.ReturnNumber(value);
        }
    }

    ShapeHandle handle_;
};

}  // namespace

IDispatch* NewConnectorFormatObject(const ShapeHandle& handle) {
    return new ConnectorFormatObject(handle);
}

IDispatch* NewAdjustmentsObject(const ShapeHandle& handle) {
    return new AdjustmentsObject(handle);
}

}  // namespace sheethost
