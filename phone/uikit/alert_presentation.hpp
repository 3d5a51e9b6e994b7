// The views of alerts and action sheets: what UIAlertController shows. They fill the window, and lay
// themselves out for its size. Main thread.
#pragma once

#include "phone/uikit/ui_alert_controller.hpp"
#include "phone/uikit/ui_control.hpp"
#include "phone/uikit/ui_image_view.hpp"
#include "phone/uikit/ui_label.hpp"
#include "phone/uikit/ui_scroll_view.hpp"
#include "phone/uikit/ui_visual_effect_view.hpp"

namespace phone {

struct AlertRowState {
    objc::ref<UIAlertAction> action;
    objc::ref<UILabel> label;
    objc::ref<UIImageView> icon;
    bool isStrong { false };   // semibold
    double fontSize { 17 };
};

// One action: a title that is touched, with the action's image at the leading edge.
struct AlertRow : objc::subclass<AlertRow, "_UIAlertControllerActionView", UIControl> {
    using subclass::subclass;

    static objc::ref<AlertRow> make(UIAlertAction action, double fontSize, bool isStrong);
    UIAlertAction action() const;
    double naturalWidth() const;   // of the title, in points

    void layoutSubviews() const;
    void setHighlighted(BOOL highlighted) const;
    void tintColorDidChange() const;

private:
    void takeColor() const;
    AlertRowState& rowState() const { return objc::state<AlertRowState>(*this); }
};

// A rounded sheet of material with a heading and rows of actions; the rows scroll if there is no room.
struct AlertGroupState {
    objc::ref<UIVisualEffectView> material;
    objc::ref<UIScrollView> scroll;
    objc::ref<UILabel> title;
    objc::ref<UILabel> message;
    std::vector<objc::ref<AlertRow>> rows;
    std::vector<objc::ref<UIView>> dividers;
    bool isSideBySide { false };
};

struct AlertViewState {
    Weak<UIAlertController> controller;
    objc::ref<UIView> dimming;
    objc::ref<UIView> container;   // all that moves in and out
    AlertGroupState main;
    AlertGroupState cancel;   // an action sheet's, apart below
};

struct AlertView : objc::subclass<AlertView, "_UIAlertControllerView", UIView> {
    using subclass::subclass;

    static objc::ref<AlertView> make(UIAlertController controller);
    void rebuild() const;   // after a change of texts or actions
    std::vector<UIAlertAction> actionsInOrder() const;
    void animate(bool presenting, std::function<void()> done) const;

    void layoutSubviews() const;
    void rowTouched(AlertRow row) const;                  // phone_rowTouched:
    void outsideTouched(objc::handle recognizer) const;   // phone_outsideTouched:

private:
    bool isSheet() const;
    void addGroup(AlertGroupState& group, bool isOpaque) const;
    void addRow(AlertGroupState& group, UIAlertAction action) const;
    void layOutSheet() const;
    void layOutAlert() const;
    AlertViewState& alertViewState() const { return objc::state<AlertViewState>(*this); }
};

void defineAlertViews();

}
