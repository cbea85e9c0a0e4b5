// The browser side of the generated pages: the menu button, "select all", confirmations and
// the same checks as the server makes, so that most mistakes are shown before sending. The
// server checks everything again; nothing here is trusted.
(function () {
  "use strict";

  function each(selector, fn, root) {
    Array.prototype.forEach.call((root || document).querySelectorAll(selector), fn);
  }

  function fieldText(el) {
    var label = el.closest(".qvField");
    label = label && label.querySelector("label");
    return label ? label.textContent.replace("*", "").trim() : el.name;
  }

  function parseDate(text, type) {
    var m = /^\s*(\d{1,4})[-\/.](\d{1,2})[-\/.](\d{1,4})(?:[ T](\d{1,2}):(\d{2})(?::(\d{2}))?)?\s*$/.exec(text);
    if (!m) return null;
    var y, mo, d;
    if (m[1].length === 4) { y = m[1]; mo = m[2]; d = m[3]; }
    else if (type === "EURODATE") { d = m[1]; mo = m[2]; y = m[3]; }
    else { mo = m[1]; d = m[2]; y = m[3]; }
    if (y.length !== 4) return null;
    var date = new Date(+y, +mo - 1, +d, +(m[4] || 0), +(m[5] || 0), +(m[6] || 0));
    return date.getMonth() === +mo - 1 && date.getDate() === +d ? date : null;
  }

  // The message for one control, "" when its value passes.
  function check(el) {
    var v = el.value.trim(), type = el.getAttribute("data-qv-type") || "";
    var own = el.getAttribute("data-qv-msg"), name = fieldText(el);
    var min = el.getAttribute("data-qv-min"), max = el.getAttribute("data-qv-max");
    var say = function (text) { return own || text.replace("%f", name); };
    var phrases = window.qvPhrases || {};
    if (el.type === "checkbox" || el.type === "radio") {
      if (el.required && !el.form.querySelector("[name='" + el.name + "']:checked"))
        return say(phrases.required || "Please enter %f.");
      return "";
    }
    if (v === "") return el.required ? say(phrases.required || "Please enter %f.") : "";
    if (type === "INTEGER" || type === "FLOAT") v = numberText(v, phrases.decimal || ".", phrases.group || ",");
    if (type === "INTEGER" && !/^[+-]?\d+$/.test(v)) return say(phrases.integer || "%f must be a whole number.");
    if (type === "FLOAT" && !/^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/.test(v)) return say(phrases.number || "%f must be a number.");
    if (/DATE$/.test(type) && !parseDate(v, type)) return say(phrases.date || "%f must be a date.");
    if ((type === "INTEGER" || type === "FLOAT") && ((min !== null && +v < +min) || (max !== null && +v > +max)))
      return say((phrases.range || "%f must lie between %1 and %2.").replace("%1", min || "").replace("%2", max || ""));
    return "";
  }

  // A number typed the language's way, with "." before the decimals, as the server reads it.
  function numberText(v, decimal, group) {
    if (decimal !== "." && v.indexOf(decimal) >= 0) return v.split(group).join("").replace(decimal, ".");
    return group !== "." ? v.split(group).join("") : v;
  }

  function show(el, message) {
    var box = el.closest(".qvField");
    if (!box) return;
    box.classList.toggle("qvInvalid", message !== "");
    var slot = box.querySelector(".qvFieldError");
    if (slot) slot.textContent = message;
  }

  document.addEventListener("DOMContentLoaded", function () {
    each(".qvMenuButton", function (button) {
      button.addEventListener("click", function () {
        var open = document.body.classList.toggle("qvNavOpen");
        button.setAttribute("aria-expanded", open ? "true" : "false");
      });
    });
    each(".qvCheckAll", function (box) {
      box.addEventListener("change", function () {
        each("input[name='key'][type='checkbox']", function (c) { c.checked = box.checked; }, box.form);
      });
    });
    each("[data-qv-confirm]", function (button) {
      button.addEventListener("click", function (e) {
        if (!window.confirm(button.getAttribute("data-qv-confirm"))) e.preventDefault();
      });
    });
    each(".qvAutoSubmit", function (select) {
      select.addEventListener("change", function () { select.form.submit(); });
    });
    each("#qvListForm", function (form) {
      form.addEventListener("submit", function (e) {
        if (!form.querySelector("input[name='key']:checked")) e.preventDefault();
      });
    });
    each("form[data-qv-validate]", function (form) {
      form.addEventListener("submit", function (e) {
        var first = null;
        each("input, select, textarea", function (el) {
          if (!el.name || el.type === "hidden") return;
          var message = check(el);
          show(el, message);
          if (message && !first) first = el;
        }, form);
        if (first) { e.preventDefault(); first.focus(); }
      });
      each("input, select, textarea", function (el) {
        el.addEventListener("change", function () { show(el, check(el)); });
      }, form);
    });
  });
})();
