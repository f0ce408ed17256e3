// The holders and the fixed workbook operations. The engine's text is UTF-8: texts travel to the
// host as "%S" after Widen() and come back through "%S" and Narrow(), so no code page can change
// a task name on the way.
#include "workbook/workbook.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "values/values.h"
#include "workbook/automation.h"

namespace {

struct FreeBstr {
    void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using OwnedBstr = std::unique_ptr<OLECHAR, FreeBstr>;

WideString WidePath(std::string_view prefix, std::string_view name, std::string_view suffix = {}) {
    std::string path;
    path.reserve(prefix.size() + name.size() + suffix.size());
    path.append(prefix).append(name).append(suffix);
    return Widen(path);
}

std::string NarrowAndFree(BSTR text) {
    const OwnedBstr owned(text);
    return NarrowBstr(owned.get());
}

double GetDoubleV(IDispatch* object, LPCOLESTR path, va_list arguments) {
    double value = 0.0;
    automation::GetValueV(OLESTR("%e"), &value, object, path, arguments);
    return value;
}

double GetDouble(IDispatch* object, LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const double value = GetDoubleV(object, path, arguments);
    va_end(arguments);
    return value;
}

IDispatch* GetDispatchV(IDispatch* object, LPCOLESTR path, va_list arguments) {
    IDispatch* found = nullptr;
    automation::GetValueV(OLESTR("%o"), &found, object, path, arguments);
    return found;
}

IDispatch* GetDispatch(IDispatch* object, LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    IDispatch* found = GetDispatchV(object, path, arguments);
    va_end(arguments);
    return found;
}

}  // namespace

XlObject::XlObject(IDispatch* reference) : object_(reference) {}

XlObject::~XlObject() {
    Destroy();
}

XlObject::XlObject(XlObject&& other) noexcept
    : object_(std::exchange(other.object_, nullptr)), owned_(other.owned_) {}

XlObject& XlObject::operator=(XlObject&& other) noexcept {
    if (this != &other) {
        Destroy();
        object_ = std::exchange(other.object_, nullptr);
        owned_ = other.owned_;
    }
    return *this;
}

void XlObject::Assign(IDispatch* reference) {
    if (owned_ && object_ != nullptr) object_->Release();
    object_ = reference;
}

void XlObject::Destroy() {
    if (owned_ && object_ != nullptr) object_->Release();
    object_ = nullptr;
}

void XlObject::CopyFrom(const XlObject& other) {
    if (this == &other) return;
    // The reference held so far is given up as on reassignment, or it would never be released.
    Destroy();
    object_ = other.object_;
    owned_ = other.owned_;
}

IDispatch* XlObject::Detach() {
    return std::exchange(object_, nullptr);
}

std::string XlObject::GetString(std::string_view name) const {
    BSTR text = nullptr;
    automation::GetValue(OLESTR("%S"), &text, object_, WidePath(".", name).c_str());
    return NarrowAndFree(text);
}

void XlObject::SetString(std::string_view name, std::string_view text) const {
    automation::PutValue(object_, WidePath(".", name, "=%S").c_str(), Widen(text).c_str());
}

WideString XlObject::GetWide(std::string_view name) const {
    BSTR text = nullptr;
    automation::GetValue(OLESTR("%S"), &text, object_, WidePath(".", name).c_str());
    const OwnedBstr owned(text);
    return WideString(owned.get(), SysStringLen(owned.get()));
}

void XlObject::SetWide(std::string_view name, WideStringView text) const {
    const WideString copy(text);
    automation::PutValue(object_, WidePath(".", name, "=%S").c_str(), copy.c_str());
}

XlObject XlObject::GetObject(std::string_view name) const {
    return XlObject(GetDispatch(object_, WidePath(".", name).c_str()));
}

XlObject XlObject::GetObjectArg(std::string_view name, std::string_view argument) const {
    // The name's "%s" is sent as "%S" with the argument widened.
    std::string path(name);
    if (const auto field = path.find("%s"); field != std::string::npos) path[field + 1] = 'S';
    return XlObject(GetDispatch(object_, WidePath(".", path).c_str(), Widen(argument).c_str()));
}

double XlObject::GetNumber(std::string_view name) const {
    return GetDouble(object_, WidePath("", name).c_str());
}

double XlObject::GetNumberArg(std::string_view name, int n) const {
    return GetDouble(object_, WidePath("", name).c_str(), n);
}

void XlObject::SetNumber(std::string_view name, double value) const {
    automation::PutValue(object_, WidePath("", name, "=%e").c_str(), value);
}

void XlObject::SetNumberArg(std::string_view name, int n, double value) const {
    automation::PutValue(object_, WidePath("", name, "=%e").c_str(), n, value);
}

void XlObject::CopyString(std::string_view name, const XlObject& from) const {
    SetString(name, from.GetString(name));
}

void XlObject::CopyNumber(std::string_view name, const XlObject& from) const {
    SetNumber(name, from.GetNumber(name));
}

HRESULT XlObject::Call(const char* path, ...) const {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = automation::CallMethodV(object_, Widen(path).c_str(), arguments);
    va_end(arguments);
    return hr;
}

HRESULT XlObject::Put(const char* path, ...) const {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = automation::PutValueV(object_, Widen(path).c_str(), arguments);
    va_end(arguments);
    return hr;
}

double XlObject::GetNumberPath(const char* path, ...) const {
    va_list arguments;
    va_start(arguments, path);
    const double value = GetDoubleV(object_, Widen(path).c_str(), arguments);
    va_end(arguments);
    return value;
}

std::string XlObject::GetStringPath(const char* path, ...) const {
    BSTR text = nullptr;
    va_list arguments;
    va_start(arguments, path);
    automation::GetValueV(OLESTR("%S"), &text, object_, Widen(path).c_str(), arguments);
    va_end(arguments);
    return NarrowAndFree(text);
}

XlObject XlObject::GetObjectPath(const char* path, ...) const {
    va_list arguments;
    va_start(arguments, path);
    IDispatch* found = GetDispatchV(object_, Widen(path).c_str(), arguments);
    va_end(arguments);
    return XlObject(found);
}

std::string XlObject::GetValue() const {
    return GetString("Value");
}
void XlObject::SetValue(std::string_view text) const {
    SetString("Value", text);
}
double XlObject::GetValueNum() const {
    return GetNumber("Value");
}
void XlObject::SetValueNum(double value) const {
    SetNumber("Value", value);
}
void XlObject::SetFormula(std::string_view formula) const {
    SetString("Formula", formula);
}
std::string XlObject::GetName() const {
    return GetString("Name");
}
std::string XlObject::GetCodeName() const {
    return GetString("codeName");
}
std::int64_t XlObject::GetRow() const {
    return values::TextToInteger(GetString("Row"));
}
std::int64_t XlObject::GetColumn() const {
    return values::TextToInteger(GetString("Column"));
}
double XlObject::GetLeft() const {
    return GetNumber("Left");
}
double XlObject::GetTop() const {
    return GetNumber("Top");
}
double XlObject::GetWidth() const {
    return GetNumber("Width");
}
double XlObject::GetHeight() const {
    return GetNumber("Height");
}
void XlObject::SetLeft(double points) const {
    SetNumber("Left", points);
}
void XlObject::SetTop(double points) const {
    SetNumber("Top", points);
}
void XlObject::SetWidth(double points) const {
    SetNumber("Width", points);
}
void XlObject::SetHeight(double points) const {
    SetNumber("Height", points);
}
void XlObject::Delete() const {
    Call("Delete");
}
void XlObject::Clear() const {
    Call("Clear");
}
void XlObject::ClearContents() const {
    Call("ClearContents");
}

XlObject XlObject::CellItem(std::int64_t n) const {
    return GetObjectArg("Cells.item(%s)", std::to_string(n));
}

XlObject XlObject::Cell(std::int64_t row, std::int64_t column) const {
    return XlObject(GetDispatch(object_, OLESTR(".Cells(%u,%u)"), static_cast<std::uint32_t>(row),
                                static_cast<std::uint32_t>(column)));
}

XlObject XlObject::RangeOf(std::string_view address) const {
    return XlObject(GetDispatch(object_, OLESTR(".Range(%S)"), Widen(address).c_str()));
}

void XlObject::SetCell(std::int64_t row, std::int64_t column, std::string_view text) const {
    automation::PutValue(object_, OLESTR(".Cells(%u,%u)=%S"), static_cast<std::uint32_t>(row),
                         static_cast<std::uint32_t>(column), Widen(text).c_str());
}

XlObject XlObject::ShapeByName(std::string_view name) const {
    return GetObjectArg("Shapes(%s)", name);
}

XlObject XlObject::ShapeAt(int index) const {
    return XlObject(GetDispatch(object_, OLESTR(".Shapes(%d)"), index));
}

XlObject XlObject::BuildFreeform(int editingType, double x, double y) const {
    return XlObject(
        GetDispatch(object_, OLESTR(".Shapes.BuildFreeform(%d,%e,%e)"), editingType, x, y));
}

void XlObject::AddNodes(int segmentType, int editingType, double x, double y) const {
    automation::CallMethod(object_, OLESTR(".AddNodes(%d,%d,%e,%e)"), segmentType, editingType, x,
                           y);
}

XlObject XlObject::ConvertToShape() const {
    return XlObject(GetDispatch(object_, OLESTR(".ConvertToShape")));
}

XlObject XlObject::GetAdjustments() const {
    return XlObject(GetDispatch(object_, OLESTR(".Adjustments")));
}

double XlObject::GetItemNum(int index) const {
    return GetNumberArg("Item(%d)", index);
}

void XlObject::SetItemNum(int index, double value) const {
    SetNumberArg("Item(%d)", index, value);
}

XlObject XlRef::View() const {
    return XlObject(object_, false);
}

std::int32_t ColumnNumber(std::string_view letters) {
    double number = 0.0;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const double place = std::pow(26.0, static_cast<double>(letters.size() - 1 - i));
        number += (static_cast<unsigned char>(letters[i]) - 64) * place;
    }
    number = std::trunc(number);
    // Texts too long to be a column have no number; converting them would overflow.
    const bool fits = number >= std::numeric_limits<std::int32_t>::min() &&
                      number <= std::numeric_limits<std::int32_t>::max();
    return fits ? static_cast<std::int32_t>(number) : 0;
}

std::string ColumnLetters(std::int64_t number) {
    if (number < 27) return std::string(1, static_cast<char>(number + 64));
    const std::int64_t quotient = number / 26;
    const std::int64_t remainder = number % 26;
    if (remainder != 0) return ColumnLetters(quotient) + ColumnLetters(remainder);
    return ColumnLetters(quotient - 1) + "Z";
}
