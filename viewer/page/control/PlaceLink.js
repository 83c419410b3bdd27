// The part in view and what is selected, as the end of the page's address: #t=0.012500,0.013000&entry=17
class PlaceLink {
    static compose(trace, scale, selected) {
        const seconds = (time) => ((time + trace.about.origin) / 1e6).toFixed(6);
        const index = trace.entries.indexOf(selected);
        const entry = index < 0 ? "" : `&entry=${index}`;
        return `#t=${seconds(scale.from)},${seconds(scale.to)}${entry}`;
    }

    // What an address asks for: { from, to, entry }, or null where it does not say. A single time has a
    // millisecond around it.
    static read(trace, address) {
        const wanted = new URLSearchParams(address.slice(1));
        const times = (wanted.get("t") ?? "").split(",").filter(Boolean)
            .map((text) => Number(text) * 1e6 - trace.about.origin);
        if (times.length === 0 || !times.every(Number.isFinite))
            return null;
        const [from, to] = times.length > 1 ? times : [times[0] - 500, times[0] + 500];
        return { from, to, entry: trace.entries[Number(wanted.get("entry") ?? NaN)] ?? null };
    }
}
