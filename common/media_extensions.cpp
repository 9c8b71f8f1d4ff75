#include "common/media_extensions.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace
{

// Filled lines: the formatter would set the entries in few wide columns.
// clang-format off

constexpr std::string_view image_extensions[] = {
    ".001", ".2bp", ".36", ".411", ".73i", ".8pbs", ".8xi", ".abm", ".accountpicture-ms", ".acorn",
    ".acr", ".adc", ".afx", ".agif", ".agp", ".aic", ".ais", ".als", ".ami", ".ani", ".anim",
    ".apm", ".apng", ".art", ".arw", ".aseprite", ".astc", ".att", ".avatar", ".avb", ".avcs",
    ".avif", ".avifs", ".awd", ".b16", ".basis", ".bfli", ".bfx", ".bga", ".bie", ".bif", ".bil",
    ".bip", ".blp", ".bmp", ".bmq", ".bmz", ".bob", ".bpg", ".brk", ".brn", ".bsb", ".btf", ".bti",
    ".bum", ".bw", ".ca1", ".ca2", ".ca3", ".cal", ".cals", ".cam", ".can", ".cbm", ".cd5", ".cdg",
    ".cdr", ".cdt", ".ce", ".ce1", ".cel", ".cfli", ".cgm", ".cif", ".ciff", ".cimg", ".cin",
    ".cit", ".clip", ".cmx", ".cmyk", ".cmyka", ".cpbitmap", ".cpc", ".cpd", ".cpg", ".cps", ".cpt",
    ".cr2", ".cr3", ".crg", ".crw", ".ct", ".cur", ".cut", ".cv5", ".cvs", ".cvx", ".czi", ".dc2",
    ".dcm", ".dcr", ".dcs", ".dctv", ".dcx", ".dds", ".dhgr", ".dib", ".dic", ".dicom", ".djv",
    ".djvu", ".dm3", ".dm4", ".dmi", ".dng", ".doo", ".dpx", ".dr2d", ".drw", ".eci", ".ecw",
    ".eip", ".emf", ".emz", ".eps", ".epsf", ".epsi", ".ept", ".erf", ".eri", ".exif", ".exr",
    ".fac", ".face", ".fax", ".fbm", ".ff", ".fff", ".ffli", ".fh10", ".fh11", ".fh7", ".fh8",
    ".fh9", ".fig", ".fit", ".fits", ".flif", ".fpg", ".fpx", ".fsh", ".fsthumb", ".fts", ".fxs",
    ".g3", ".g3n", ".gbr", ".gem", ".gfb", ".gfie", ".gif", ".giff", ".gih", ".gim", ".gmbck",
    ".gmspr", ".gp4", ".grb", ".grob", ".gry", ".ham", ".ham6", ".ham8", ".hdp", ".hdr", ".heic",
    ".heics", ".heif", ".heifs", ".hgr", ".hif", ".hips", ".hir", ".hpgl", ".hpi", ".hr", ".hrf",
    ".hrz", ".ic1", ".ic2", ".ic3", ".ica", ".icb", ".icl", ".icn", ".icns", ".ico", ".icon",
    ".icpr", ".idraw", ".iff", ".ig4", ".ilbm", ".im1", ".im8", ".image", ".img", ".info", ".ingr",
    ".insp", ".int", ".inta", ".ipick", ".ipx", ".itc2", ".ithmb", ".ivue", ".iwi", ".j2c", ".j2k",
    ".j6i", ".jas", ".jb2", ".jbf", ".jbg", ".jbig", ".jbig2", ".jbr", ".jfi", ".jfif", ".jif",
    ".jiff", ".jls", ".jng", ".jp2", ".jpc", ".jpd", ".jpe", ".jpeg", ".jpf", ".jpg", ".jpg2",
    ".jph", ".jpk", ".jpm", ".jps", ".jpt", ".jpx", ".jtf", ".jxl", ".jxr", ".jxs", ".k25", ".kdc",
    ".kdi", ".kdk", ".kfx", ".kic", ".koa", ".kqp", ".kra", ".kro", ".ktx", ".ktx2", ".lbm", ".lif",
    ".ljp", ".lrpreview", ".lsm", ".lwf", ".mac", ".macp", ".mag", ".max", ".mbm", ".mcs", ".mdc",
    ".mdi", ".mef", ".mfw", ".mgr", ".mha", ".mic", ".miff", ".mig", ".mil", ".mip", ".mix", ".mki",
    ".mng", ".mnr", ".mos", ".mpf", ".mpnt", ".mpo", ".mrb", ".mrc", ".mrf", ".mrw", ".mrxs",
    ".msp", ".mtv", ".mvg", ".mxi", ".ncr", ".nct", ".nd2", ".ndpi", ".nef", ".neo", ".ngg",
    ".nhdr", ".nii", ".nitf", ".nlm", ".nol", ".nrrd", ".nrw", ".ntf", ".oaz", ".oci", ".odg",
    ".odi", ".oir", ".ora", ".orf", ".ota", ".otb", ".otg", ".p7", ".pac", ".palm", ".pam", ".pano",
    ".pat", ".pbm", ".pc1", ".pc2", ".pc3", ".pcd", ".pct", ".pcx", ".pdd", ".pdn", ".pe4", ".pef",
    ".pfm", ".pgf", ".pgm", ".pgx", ".phm", ".pi1", ".pi2", ".pi3", ".pi5", ".pi9", ".pic",
    ".picnc", ".pict", ".pictclipping", ".piskel", ".pix", ".pjp", ".pjpeg", ".pjpg", ".pkm", ".pm",
    ".pm3", ".png", ".pnm", ".pns", ".pnt", ".pntg", ".ppf", ".ppm", ".procreate", ".prw", ".ps",
    ".psb", ".psd", ".psdb", ".psdt", ".psdx", ".pse", ".psp", ".pspbrush", ".pspframe",
    ".pspimage", ".pspshape", ".psptube", ".ptex", ".ptx", ".pvr", ".pwp", ".pxd", ".pxicon",
    ".pxm", ".pxr", ".pyxel", ".pzp", ".q0", ".q4", ".qdv", ".qif", ".qmg", ".qoi", ".qptiff",
    ".qti", ".qtif", ".qtk", ".raf", ".ras", ".rast", ".raw", ".rgb", ".rgb565", ".rgba", ".rgbe",
    ".rgf", ".ric", ".rif", ".riff", ".rix", ".rla", ".rle", ".rpf", ".rsb", ".rsr", ".rtl", ".rw2",
    ".rwl", ".rwz", ".sai", ".sai2", ".sar", ".scc", ".scg", ".sci", ".scn", ".scr", ".sct", ".scx",
    ".sff", ".sfw", ".sgi", ".shg", ".sid", ".sketch", ".skitch", ".sld", ".smp", ".snag", ".snagx",
    ".spc", ".spe", ".spiff", ".spp", ".spr", ".sprite2", ".sprite3", ".spu", ".sr2", ".srf",
    ".srw", ".sumo", ".sun", ".suniff", ".svg", ".svgz", ".svm", ".svs", ".sxd", ".t2b", ".taac",
    ".tbn", ".tdi", ".tex", ".tg4", ".tga", ".thm", ".thumb", ".tif", ".tiff", ".tim", ".tim2",
    ".tjp", ".tm2", ".tn", ".tn1", ".tn2", ".tn3", ".tny", ".tpi", ".tub", ".ufo", ".urt",
    ".usertile-ms", ".uyvy", ".vda", ".vff", ".vic", ".vicar", ".viff", ".vpe", ".vrimg",
    ".vrphoto", ".vsi", ".vss", ".vst", ".vtf", ".wal", ".wb1", ".wb2", ".wbc", ".wbd", ".wbm",
    ".wbmp", ".wbz", ".wdp", ".webp", ".wi", ".wic", ".wmf", ".wmp", ".wmz", ".wpb", ".wpg", ".wsq",
    ".x3f", ".xar", ".xbm", ".xcf", ".xcursor", ".xface", ".xif", ".xim", ".xpm", ".xwd", ".xyz",
    ".ybm", ".ycbcr", ".ycc", ".yuv", ".zif", ".zmf", ".zno", ".zvi",
};

constexpr std::string_view audio_extensions[] = {
    ".2sf", ".2sflib", ".3ga", ".4mp", ".669", ".6cm", ".8cm", ".8med", ".8svx", ".a2m", ".a52",
    ".aa", ".aa3", ".aac", ".aax", ".ab", ".abc", ".ac3", ".acd", ".acd-bak", ".acm", ".acp",
    ".act", ".ad3", ".adg", ".adp", ".ads", ".adt", ".adts", ".adv", ".adx", ".aea", ".afc", ".agr",
    ".ahx", ".aif", ".aifc", ".aiff", ".aifr", ".aimppl", ".aimppl4", ".ais", ".aix", ".al",
    ".alac", ".alaw", ".alc", ".all", ".als", ".amf", ".amm", ".amr", ".ams", ".amxd", ".amz",
    ".aob", ".ape", ".apf", ".apl", ".aptx", ".aptxhd", ".aria", ".ariax", ".ase", ".ast", ".at3",
    ".at9", ".atrac", ".au", ".aud", ".audionote", ".aup", ".aup3", ".avastsounds", ".avr", ".awb",
    ".axa", ".ay", ".b4s", ".band", ".bap", ".bcstm", ".bcwav", ".bfstm", ".bfwav", ".bidule",
    ".bmw", ".bnk", ".bonk", ".brr", ".brstm", ".bun", ".bwav", ".bwf", ".bwg", ".bww", ".c01",
    ".c2", ".caf", ".caff", ".cda", ".cdda", ".cdlx", ".cdm", ".cdo", ".cfxr", ".cidb", ".ckb",
    ".ckf", ".cmf", ".cust", ".cvs", ".cvsd", ".cwb", ".cwp", ".cws", ".cwt", ".d00", ".d01",
    ".dbm", ".dewf", ".df2", ".dff", ".dls", ".dm", ".dmf", ".dmsa", ".dmse", ".dra", ".drg",
    ".dro", ".ds2", ".dsf", ".dsm", ".dsp", ".dss", ".dst", ".dtm", ".dts", ".dtshd", ".dvf", ".ea",
    ".eac3", ".ear", ".ec3", ".efa", ".efe", ".efk", ".efq", ".efs", ".efv", ".emd", ".emod",
    ".eop", ".esps", ".eureka", ".evrc", ".ews", ".expressionmap", ".f32", ".f4a", ".f64", ".far",
    ".fc", ".fc13", ".fc14", ".fev", ".flac", ".flm", ".flp", ".fls", ".frg", ".fsb", ".fsc",
    ".fsm", ".fssd", ".ftm", ".ftmx", ".fur", ".fuz", ".fxb", ".fxp", ".fzb", ".fzf", ".fzv",
    ".g721", ".g722", ".g723", ".g726", ".gbproj", ".gbs", ".gcm", ".gdm", ".gig", ".gly", ".gm",
    ".gp3", ".gp4", ".gp5", ".groove", ".gsf", ".gsflib", ".gsm", ".gym", ".hbe", ".hbs", ".hca",
    ".hcom", ".hes", ".hma", ".hps", ".hvl", ".iff", ".imf", ".imfc", ".imp", ".ims", ".iti",
    ".itls", ".its", ".itz", ".j2b", ".jam", ".jspf", ".k26", ".kar", ".kfn", ".kit", ".kmp",
    ".koz", ".krz", ".ksc", ".ksf", ".kss", ".kt3", ".ktp", ".la", ".lof", ".logic", ".logicx",
    ".lqt", ".lso", ".lwv", ".ly", ".m1a", ".m2", ".m2a", ".m3u", ".m3u8", ".m4a", ".m4b", ".m4p",
    ".m4r", ".m5p", ".ma3", ".mdc", ".mdl", ".mdx", ".mdz", ".med", ".mfp", ".mgv", ".mid", ".midi",
    ".mini2sf", ".minigsf", ".minincsf", ".minipsf", ".minipsf2", ".miniusf", ".mka", ".mlp",
    ".mmd", ".mmd0", ".mmd1", ".mmd2", ".mmd3", ".mmf", ".mml", ".mmp", ".mmpz", ".mo3", ".mod",
    ".mp1", ".mp2", ".mp3", ".mp3pro", ".mpa", ".mpc", ".mpdp", ".mpga", ".mpp", ".mptm", ".mpu",
    ".mscx", ".mscz", ".msf", ".msv", ".mt2", ".mt9", ".mtf", ".mtm", ".mtp", ".mus", ".musicxml",
    ".musx", ".mux", ".mws", ".mx3", ".mx4", ".mx5", ".mxl", ".mxmf", ".myr", ".nap", ".nbs",
    ".ncsf", ".ncsflib", ".ncw", ".nist", ".nkb", ".nkc", ".nki", ".nkm", ".nks", ".nkx", ".nmsv",
    ".nra", ".nrt", ".nsa", ".nsf", ".nsfe", ".nsq", ".nst", ".ntn", ".nvf", ".nwa", ".nwc",
    ".nwctxt", ".odm", ".ofr", ".ofs", ".oga", ".ogg", ".okt", ".oma", ".omf", ".omg", ".opus",
    ".ots", ".ove", ".oxm", ".paf", ".pandora", ".pca", ".pcast", ".pcg", ".pcm", ".peak", ".pek",
    ".pk", ".pla", ".plm", ".pls", ".plst", ".pmpl", ".pna", ".ppc", ".ppcx", ".psf", ".psf1",
    ".psf2", ".psflib", ".psid", ".psm", ".psy", ".pt3", ".ptcop", ".ptf", ".ptm", ".pttune",
    ".ptx", ".ptxt", ".pvc", ".pxtone", ".qcp", ".qsf", ".qsflib", ".ra", ".rad", ".ram", ".raw",
    ".rax", ".rbs", ".rcp", ".rcy", ".rf64", ".rfl", ".rgrp", ".rmi", ".rmj", ".rmm", ".rmx",
    ".rns", ".rol", ".rpp", ".rsn", ".rso", ".rtm", ".rts", ".rx2", ".rxm", ".s3i", ".s3m", ".s3z",
    ".s98", ".sap", ".sbg", ".sbi", ".sbk", ".sc2", ".sc68", ".sd", ".sd2", ".sd2f", ".sdat",
    ".sdii", ".sds", ".sdt", ".seq", ".ses", ".sesx", ".sf", ".sf2", ".sf3", ".sfap0", ".sfark",
    ".sfk", ".sfl", ".sfpack", ".sfs", ".sfz", ".sgt", ".shn", ".sib", ".sid", ".slp", ".smf",
    ".smp", ".snd", ".sndh", ".sndr", ".sndt", ".sng", ".sns", ".snsf", ".snsflib", ".soundpack",
    ".spc", ".sph", ".sppack", ".spx", ".sqt", ".sseq", ".ssf", ".ssflib", ".ssnd", ".stc", ".stk",
    ".stm", ".stp", ".sunvox", ".svd", ".svp", ".svq", ".svx", ".sw", ".swa", ".swav", ".sxt",
    ".syh", ".syw", ".tak", ".tfmx", ".thx", ".tta", ".txw", ".u", ".u8", ".ulaw", ".ulw", ".umx",
    ".usf", ".usflib", ".ust", ".usx", ".uw", ".uwf", ".v2m", ".vag", ".vgm", ".vgz", ".vip",
    ".vmd", ".vmo", ".voc", ".voi", ".vox", ".voxal", ".vpm", ".vqf", ".vrf", ".vsq", ".vsqx",
    ".vtx", ".vyf", ".w01", ".w64", ".wav", ".wave", ".wax", ".wem", ".wfb", ".wfd", ".wfm", ".wfp",
    ".wma", ".wv", ".wvc", ".wve", ".wvx", ".wyz", ".xa", ".xi", ".xm", ".xma", ".xmf", ".xmi",
    ".xmu", ".xmz", ".xrni", ".xrns", ".xspf", ".xwb", ".ym",
};

constexpr std::string_view video_extensions[] = {
    ".264", ".3g2", ".3gp", ".3gp2", ".3gpp", ".3gpp2", ".3mm", ".3p2", ".60d", ".787", ".aaf",
    ".aec", ".aep", ".aepx", ".aet", ".aetx", ".amv", ".asf", ".asx", ".avc", ".avchd", ".avi",
    ".avs", ".axv", ".bik", ".bk2", ".camproj", ".camrec", ".ced", ".cine", ".d2v", ".dav", ".divx",
    ".dpg", ".dv", ".dv-avi", ".dvr", ".dvr-ms", ".dvx", ".evo", ".eyetv", ".f4f", ".f4p", ".f4v",
    ".flc", ".fli", ".flv", ".flx", ".g2m", ".g64", ".gifv", ".gvi", ".h263", ".h264", ".h265",
    ".hdmov", ".hevc", ".insv", ".ismv", ".ivf", ".jts", ".k3g", ".kmv", ".lrec", ".lrv", ".lsf",
    ".m15", ".m1v", ".m21", ".m2p", ".m2t", ".m2ts", ".m2v", ".m4u", ".m4v", ".mj2", ".mjpeg",
    ".mjpg", ".mk3d", ".mkv", ".mod", ".mov", ".movie", ".mp21", ".mp2v", ".mp4", ".mp4v", ".mpe",
    ".mpeg", ".mpg", ".mpl", ".mpv", ".mpv2", ".mqv", ".mswmm", ".mts", ".mtv", ".mve", ".mxf",
    ".nsv", ".nuv", ".ogm", ".ogv", ".pmf", ".prproj", ".qt", ".r3d", ".rm", ".rmvb", ".rv",
    ".screenflow", ".smk", ".swf", ".tivo", ".tod", ".trp", ".ts", ".usm", ".vc1", ".vdr", ".vob",
    ".vp6", ".vp7", ".vp8", ".vp9", ".vro", ".webm", ".wm", ".wmv", ".wtv", ".xesc", ".xmv",
    ".xvid",
};

// clang-format on

/// Look-ups search by halving, so an entry out of order would not be found.
constexpr bool is_searchable(std::span<const std::string_view> extensions)
{
    const auto is_lower_case_with_dot = [](std::string_view extension) {
        return extension.starts_with('.') &&
               std::ranges::none_of(extension, [](char c) { return c >= 'A' && c <= 'Z'; });
    };
    return std::ranges::all_of(extensions, is_lower_case_with_dot) &&
           std::ranges::adjacent_find(extensions, std::greater_equal()) == extensions.end();
}

static_assert(std::size(image_extensions) == 548 && is_searchable(image_extensions));
static_assert(std::size(audio_extensions) == 545 && is_searchable(audio_extensions));
static_assert(std::size(video_extensions) == 133 && is_searchable(video_extensions));

} // namespace

std::span<const std::string_view> known_image_extensions()
{
    return image_extensions;
}

std::span<const std::string_view> known_audio_extensions()
{
    return audio_extensions;
}

std::span<const std::string_view> known_video_extensions()
{
    return video_extensions;
}
