-- Shows the supervisor link of the front panel in names instead of bytes: TCP port 5000, both directions.
--     wireshark -X lua_script:vireo.lua
-- or put this file and vocabulary.h into the folder of personal Lua plugins (Help, About, Folders). The words are
-- vireo-supervisor's: they are read from the panel's own vocabulary, which lies beside this file or in ../link.

local function readVocabulary()
    local here = debug.getinfo(1, "S").source:gsub("^@", ""):match("^.*/") or "./"
    for _, folder in ipairs({ here, here .. "../link/" }) do
        local file = io.open(folder .. "vocabulary.h")
        if file then return file:read("*a"):gsub("//[^\n]*", ""), file:close() end
    end
    error("vireo.lua needs vocabulary.h beside it")
end

local vocabulary = readVocabulary()

-- The numbers of every enumerator, as the compiler counts them: codes.Key.Stop.
local codes = {}
for name, body in vocabulary:gmatch("enum class (%w+) : %w+ (%b{})") do
    local code = -1
    codes[name] = {}
    for enumerator, value in body:gmatch("(%w+)%s*=?%s*(%w*)") do
        code = tonumber(value) or code + 1
        codes[name][enumerator] = code
    end
end

local function number(written)
    local kind, enumerator = written:match("^(%w+)::(%w+)$")
    return kind and codes[kind][enumerator] or tonumber(written)
        or tonumber(vocabulary:match("constexpr quint8 " .. written .. " = (%w+);"))
end

-- The terms of one kind in their order: the number and the word of each.
local function terms(kind)
    local all = {}
    for value, word in vocabulary:match("constexpr Term " .. kind .. "%[%] = (%b{});"):gmatch('{([%w:]+), "([^"]+)"') do
        all[#all + 1] = { number(value), word }
    end
    return all
end

local function wordOf(all, value, ifNone)
    for _, term in ipairs(all) do
        if term[1] == value then return term[2] end
    end
    return ifNone
end

local commands, names = {}, {}
for row in vocabulary:match("constexpr CommandRow commands%[%] = {(.-)};"):gmatch("%b{}") do
    local command, name, word = row:match('Command::(%w+),%s*"(%w+)",%s*"?([%w-]+)')
    local code = codes.Command[command]
    names[code] = word == "nullptr" and name or word
    commands[code] = {
        terms = row:match("{(%w+)}}") and terms(row:match("{(%w+)}}")),
        least = tonumber(row:match('{{},%s*"%w+",%s*(%-?%d+)')),
    }
end
local modes, longPress = terms("modes"), number("longPress")
local playFlags, playTypes, playTypeValues = terms("playFlags"), terms("playTypes"), number("playTypeBits") + 1

local port, headerBytes, titleBytes = 5000, 4, 256

local link = Proto("vireo", "Front-panel supervisor link")
local fields = {
    command = ProtoField.uint16("vireo.command", "Command", base.DEC, names),
    length = ProtoField.uint16("vireo.length", "Data bytes"),
    data = ProtoField.bytes("vireo.data", "Data"),
    words = ProtoField.string("vireo.words", "In words"),
    missing = ProtoField.uint16("vireo.missing", "Bytes missing in this chunk"),
    junk = ProtoField.bytes("vireo.junk", "Junk"),
}
link.fields = fields

-- Each takes the data of a packet, which is not empty, and says it in words; `all` are the terms of its command.

local function named(data, all)
    local byte = data(0, 1):uint()
    return wordOf(all, byte, string.format("(0x%02X)", byte))
end

local function text(data)
    if data:len() == 0 then return "" end
    return (data:string(ENC_UTF_8):gsub("\0.*", ""))
end

local function isSet(byte, bit)
    return bit > 0 and math.floor(byte / bit) % 2 == 1
end

local function key(data, all)
    local byte = data(0, 1):uint()
    local held = byte >= longPress
    local word = wordOf(all, held and byte - longPress or byte)
    return word and (held and "long-" or "") .. word or string.format("(0x%02X)", byte)
end

local function mask(data, all)
    local byte, said = data(0, 1):uint(), {}
    for _, term in ipairs(all) do
        if isSet(byte, term[1]) then said[#said + 1] = term[2] end
    end
    return #said == 0 and wordOf(all, 0) or table.concat(said, " ")
end

local function playMode(data)
    local byte, said = data(0, 1):uint(), ""
    for _, flag in ipairs(playFlags) do
        if isSet(byte, flag[1]) then said = said .. flag[2] .. " " end
    end
    return said .. wordOf(playTypes, byte % playTypeValues, "(type 3)")
end

local function playTime(data)
    local digits = {}
    for i = 0, data:len() - 1 do digits[#digits + 1] = string.format("%02x", data(i, 1):uint()) end
    return table.concat(digits, ":")
end

local function disk(data)
    if data:len() < 4 then return "(short)" end
    return data(0, 2):le_uint() .. " " .. data(2, 2):le_uint()
end

local function station(data)
    local title = text(data(0, math.min(titleBytes, data:len())))
    return title .. (data:len() > titleBytes and " " .. text(data(titleBytes)) or "")
end

local function request(data, _, fromPanel)
    local byte = data(0, 1):uint()
    if fromPanel then return wordOf(modes, byte, string.format("(%d)", byte)) end
    return byte == codes.Request.Mode and "" or string.format("(%d)", byte)
end

local sayers = {
    Filename = text, Time = playTime, Mode = playMode, Key = key, Device = mask, IRStation = station, DiskInfo = disk,
    UrlText = text, Request = request, UpgradeMsg = text,
}
for command, say in pairs(sayers) do commands[codes.Command[command]].say = say end

-- Other commands have one byte: a term, or a number.
local function sayByte(data, all, _, least)
    if all then return named(data, all) end
    return least and (least < 0 and data(0, 1):int() or data(0, 1):uint()) or ""
end

local function say(command, data, fromPanel)
    local row = commands[command]
    local name = fromPanel and command == codes.Command.Request and "report" or names[command]
    local said = data:len() > 0 and (row.say or sayByte)(data, row.terms, fromPanel, row.least) or ""
    return said == "" and name or name .. " " .. said
end

local function addPacket(buffer, tree, fromPanel)
    local command, length = buffer(0, 2):le_uint(), buffer(2, 2):le_uint()
    local here = math.min(length, buffer:len() - headerBytes)
    -- The length of this one counts characters and not the zero byte behind them.
    if command == codes.Command.UrlText then here = buffer:len() - headerBytes end
    local data = buffer(headerBytes, here)
    local words = say(command, data, fromPanel)
    local branch = tree:add(link, buffer(0, headerBytes + here), "Packet: " .. words)
    branch:add_le(fields.command, buffer(0, 2))
    branch:add_le(fields.length, buffer(2, 2))
    branch:add(fields.data, data)
    branch:add(fields.words, data, words)
    if here < length then branch:add(fields.missing, data, length - here):set_generated() end
    return headerBytes + here, words
end

-- A chunk is cut as the panel cuts it: what does not begin a packet that fits is passed over byte by byte.
local function fits(buffer, at)
    if buffer:len() - at <= headerBytes then return false end
    local command, length = buffer(at, 2):le_uint(), buffer(at + 2, 2):le_uint()
    return commands[command] and length > 0 and length <= buffer:len() - at
end

function link.dissector(chunk, info, tree)
    local buffer, fromPanel = chunk(), info.src_port == port
    local branch, at, junkFrom, said = tree:add(link, buffer), 0, nil, {}
    while at < buffer:len() do
        local taken, words = 1, nil
        if fits(buffer, at) then
            if junkFrom then branch:add(fields.junk, buffer(junkFrom, at - junkFrom)) end
            junkFrom = nil
            taken, words = addPacket(buffer(at), branch, fromPanel)
            said[#said + 1] = words
        else
            junkFrom = junkFrom or at
        end
        at = at + taken
    end
    if junkFrom then branch:add(fields.junk, buffer(junkFrom)) end
    info.cols.protocol = "VIREO"
    info.cols.info = table.concat(said, ", ")
    return buffer:len()
end

DissectorTable.get("tcp.port"):add(port, link)
