// The functions of a call tree as a table that sorts by any of its columns.
class FunctionTable {
    static longest = 200;

    constructor(onChoice) {
        this.onChoice = onChoice;
        this.column = "self";
        for (const button of document.querySelectorAll("thead button"))
            button.onclick = () => this.#sort(button.value);
    }

    show(functions, title) {
        this.functions = functions;
        element("#functions summary").textContent = title;
        this.#sort(this.column);
    }

    #sort(column) {
        this.column = column;
        const direction = column === "name" ? "ascending" : "descending";
        for (const button of document.querySelectorAll("thead button"))
            button.parentElement.ariaSort = button.value === column ? direction : "none";
        for (const group of document.querySelectorAll("#functions tbody"))
            group.remove();
        const order = column === "name" ? (one, other) => one.name.localeCompare(other.name) :
            (one, other) => other[column] - one[column];
        const groups = [...this.functions].sort(order).slice(0, FunctionTable.longest).map((one) => this.#group(one));
        element("#functions thead").after(...groups);
    }

    // The name has a line of its own above the numbers.
    #group({ name, count, total, self, longest }) {
        const group = make("tbody");
        const head = make("th", "", { scope: "rowgroup", colSpan: 4 });
        const numbers = make("tr");
        const seconds = [self, total, longest].map((time) => (time / 1e6).toFixed(6));
        head.append(make("button", name, { onclick: () => this.onChoice(name) }));
        numbers.append(...[count.toLocaleString("en"), ...seconds].map((text) => make("td", text)));
        group.append(make("tr"), numbers);
        group.firstChild.append(head);
        return group;
    }
}
