#include "plugin/strip/contact_cell.hpp"

#include "objc/define.hpp"

void defineCVLContactCell()
{
    objc::define<CVLContactCell>()
        .property<"contactPhoneNumber", NSString>(objc::strong)
        .property<"contactImage", UIImage>(objc::strong)
        .property<"contactFirstName", UILabel>(objc::strong)
        .property<"contactLastName", UILabel>(objc::strong)
        .ivar<"_styleConstraints", NSArray>(objc::strong)
        .install();
}
