-- Shows the supervisor link of the front panel in names instead of bytes: TCP port 5000, both directions.
--     wireshark -X lua_script:vireo.lua
-- or put this file into the folder of personal Lua plugins (Help, About, Folders). The words are vireo-supervisor's.

local commands = {
    [1] = "file", [2] = "time", [3] = "mode", [4] = "level", [5] = "key", [6] = "disk-state", [7] = "device",
    [8] = "station", [9] = "reserved", [10] = "disk", [11] = "enc", [12] = "url", [13] = "request", [14] = "dhcp",
    [15] = "upgrade", [16] = "upgrade-message", [17] = "aoe",
}
local keys = {
    [0x01] = "stop", [0x02] = "play-pause", [0x03] = "prev", [0x04] = "next", [0x05] = "mode", [0x06] = "select",
    [0x07] = "esc",
    [0x81] = "long-stop", [0x82] = "long-play-pause", [0x83] = "long-prev", [0x84] = "long-next", [0x85] = "long-mode",
    [0x86] = "long-select", [0x87] = "long-esc",
}
local diskStates = { [1] = "normal", [3] = "removed" }
local sources = { { 0x01, "usb" }, { 0x02, "stream" }, { 0x04, "aux" }, { 0x08, "ir" }, { 0x10, "aoe" } }
local playTypes = { [0] = "one", [1] = "all", [2] = "folder" }
local dhcpSteps = { [2] = "done" }
local upgradeSteps = { [1] = "start", [2] = "fail" }
local aoeStates = { [0] = "stop", [1] = "ok", [2] = "fail", [3] = "over" }
local modes = {
    [0] = "menu", [1] = "usb", [2] = "aoe", [3] = "radio-list", [4] = "radio", [5] = "netbgm", [6] = "setup",
    [7] = "dhcp", [255] = "none",
}

local port, headerBytes, titleBytes, askForMode = 5000, 4, 256, 8
local firstCommand, lastCommand, modeReport, urlText = 1, #commands, 13, 12

local link = Proto("vireo", "Front-panel supervisor link")
local fields = {
    command = ProtoField.uint16("vireo.command", "Command", base.DEC, commands),
    length = ProtoField.uint16("vireo.length", "Data bytes"),
    data = ProtoField.bytes("vireo.data", "Data"),
    words = ProtoField.string("vireo.words", "In words"),
    missing = ProtoField.uint16("vireo.missing", "Bytes missing in this chunk"),
    junk = ProtoField.bytes("vireo.junk", "Junk"),
}
link.fields = fields

-- Each takes the data of a packet, which is not empty, and says it in words.

local function named(names)
    return function(data)
        local byte = data(0, 1):uint()
        return names[byte] or string.format("(0x%02X)", byte)
    end
end

local function text(data)
    if data:len() == 0 then return "" end
    return (data:string(ENC_UTF_8):gsub("\0.*", ""))
end

local function isSet(byte, bit)
    return math.floor(byte / bit) % 2 == 1
end

local function mask(data)
    local byte, names = data(0, 1):uint(), {}
    for _, source in ipairs(sources) do
        if isSet(byte, source[1]) then names[#names + 1] = source[2] end
    end
    return #names == 0 and "none" or table.concat(names, " ")
end

local function playMode(data)
    local byte = data(0, 1):uint()
    return (isSet(byte, 0x04) and "repeat " or "") .. (isSet(byte, 0x08) and "shuffle " or "")
        .. (playTypes[byte % 4] or "(type 3)")
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

local function request(data, fromPanel)
    local byte = data(0, 1):uint()
    if fromPanel then return modes[byte] or string.format("(%d)", byte) end
    return byte == askForMode and "" or string.format("(%d)", byte)
end

local sayers = {
    [1] = text, [2] = playTime, [3] = playMode, [4] = function(data) return data(0, 1):uint() end,
    [5] = named(keys), [6] = named(diskStates), [7] = mask, [8] = station, [10] = disk,
    [11] = function(data) return data(0, 1):int() end, [12] = text, [13] = request, [14] = named(dhcpSteps),
    [15] = named(upgradeSteps), [16] = text, [17] = named(aoeStates),
}

local function say(command, data, fromPanel)
    local name = fromPanel and command == modeReport and "report" or commands[command]
    local said = sayers[command] and data:len() > 0 and sayers[command](data, fromPanel) or ""
    return said == "" and name or name .. " " .. said
end

local function addPacket(buffer, tree, fromPanel)
    local command, length = buffer(0, 2):le_uint(), buffer(2, 2):le_uint()
    local here = math.min(length, buffer:len() - headerBytes)
    -- The length of this one counts characters and not the zero byte behind them.
    if command == urlText then here = buffer:len() - headerBytes end
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
    return command >= firstCommand and command <= lastCommand and length > 0 and length <= buffer:len() - at
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
