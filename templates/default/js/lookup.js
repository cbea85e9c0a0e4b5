// Lookups of the generated forms: a select that follows its parent field shows only the
// choices of the parent's value, and a lookup that allows it gets values added in place.
(function () {
  "use strict";

  function follow(select) {
    var parent = document.getElementById(select.getAttribute("data-qv-parent"));
    if (!parent) return;
    var apply = function () {
      var chosen = parent.value;
      Array.prototype.forEach.call(select.options, function (o) {
        if (!o.hasAttribute("data-qv-of")) return;
        var fits = chosen === "" || o.getAttribute("data-qv-of") === chosen;
        o.hidden = !fits;
        o.disabled = !fits;
        if (!fits && o.selected) o.selected = false;
      });
    };
    parent.addEventListener("change", apply);
    apply();
  }

  function adder(button) {
    button.addEventListener("click", function () {
      var form = button.form;
      var select = document.getElementById("qv_" + button.getAttribute("data-qv-addlookup"));
      var text = window.prompt(button.getAttribute("data-qv-ask"), "");
      if (!form || !select || text === null || text.trim() === "") return;
      var body = new URLSearchParams();
      body.set("qvaddlookup", button.getAttribute("data-qv-addlookup"));
      body.set("qvvalue", text.trim());
      body.set("qvtoken", form.elements.qvtoken ? form.elements.qvtoken.value : "");
      fetch(form.getAttribute("action") || window.location.pathname, { method: "POST", body: body, credentials: "same-origin" })
        .then(function (r) { return r.ok ? r.json() : r.json().then(function (j) { throw new Error(j.error || r.status); }, function () { throw new Error(r.status); }); })
        .then(function (added) {
          var option = Array.prototype.find.call(select.options, function (o) { return o.value === added.value; });
          if (!option) {
            option = new Option(added.label, added.value);
            select.add(option);
          }
          option.selected = true;
          select.dispatchEvent(new Event("change", { bubbles: true }));
        })
        .catch(function (e) { window.alert(e.message); });
    });
  }

  document.addEventListener("DOMContentLoaded", function () {
    document.querySelectorAll("select[data-qv-parent]").forEach(follow);
    document.querySelectorAll("[data-qv-addlookup]").forEach(adder);
  });
})();
