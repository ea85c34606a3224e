#pragma once

#include <string_view>

// What the gloss knows besides the terms of the trade: Chinese words and phrases, each with what stands for
// it in the middle of an English sentence up to a semicolon. Nothing stands for a particle.
namespace lumarin::service::phrases {

// Characters that are words wherever they stand, even between characters that are not known.
inline constexpr std::string_view littleWords = R"(
的; 了; 吗; 呢; 吧; 就; 我 I; 你 you; 您 you; 他 he; 她 she; 它 it; 这 this; 那 that; 是 is; 有 have; 在 in;
到 to; 请 please; 很 very; 也 also;
)";

// What follows a figure, and means something else or nothing anywhere else. No plural here ends in "es".
inline constexpr std::string_view units = R"(
个; 款 styles; 种 kinds; 件 pcs; 只 pcs; 条 pcs; 片 pcs; 支 pcs; 台 units; 套 sets; 双 pairs; 对 pairs;
打 dozen; 箱 cartons; 盒 packs; 包 bags; 袋 bags; 瓶 bottles; 卷 rolls; 张 sheets; 批 lots; 次 times;
吨 tons; 公斤 kg; 克 g; 米 m; 厘米 cm; 毫米 mm; 立方 CBM; 立方米 CBM; 尺 ft; 元 yuan; 美元 USD; 美金 USD;
欧元 EUR; 万 x 10,000; 点 o'clock; 小时 hours; 天 days; 天内 days or less; 天后 days later;
工作日 working days; 个工作日 working days; 周 weeks; 个星期 weeks; 个月 months; 年 years;
号 of the month; 号前 of the month at the latest; 号之前 of the month at the latest;
)";

// What is said in whole phrases: greetings, thanks, requests, closings.
inline constexpr std::string_view courtesies = R"(
你好 hello; 您好 hello; 尊敬的 dear; 经理 manager; 谢谢 thank you; 非常感谢 thank you very much;
非常感谢您的 thank you very much for your; 感谢 thank you for; 感谢您 thank you;
感谢您的 thank you for your; 抱歉 sorry; 很抱歉 we are very sorry; 非常抱歉 we are very sorry;
不好意思 sorry; 给您带来的不便 for the inconvenience; 敬请谅解 we ask for your understanding;
没问题 no problem; 好的 OK; 好 good; 是的 yes; 收到 received; 收到了 received; 请问 may I ask,;
请问这款 may I ask about this; 请问你们有 may I ask, do you have; 想问一下 would like to ask,;
麻烦您 could you please; 请告知 please let us know; 请给我们 please give us; 请发给我 please send me;
请发给我们 please send us; 请把 please send the; 请查收 please check; 请放心 please rest assured;
请尽快回复 please reply as soon as possible; 请随时联系我们 please feel free to contact us;
如有任何问题 if you have any questions,; 如有问题 if you have any questions,; 期待 we look forward to;
期待您的回复 we look forward to your reply; 期待与您合作 we look forward to working with you;
期待与贵公司合作 we look forward to working with your company;
合作愉快 we look forward to a pleasant cooperation; 祝您 we wish you; 生意兴隆 a prosperous business;
顺祝商祺 best regards; 有任何问题 if you have any questions,; 祝好 best wishes; 有问题 has a problem;
)";

// Questions as whole phrases, since English begins with what Chinese ends with. A comma at the beginning is
// left out where there is nothing to part the question from.
inline constexpr std::string_view questions = R"(
是多少 , how much is it; 多少钱 , how much is it; 报价是多少 , what is the quote;
价格是多少 , what is the price; 单价是多少 , what is the unit price; 运费是多少 , what is the freight cost;
起订量是多少 , what is the MOQ; 最小起订量是多少 , what is the MOQ; 交货期是多久 , what is the lead time;
交期是多久 , what is the lead time; 多少 how many; 多少箱 how many cartons; 多久 how long;
要多久 , how long does it take; 需要多久 , how long does it take; 是什么 , what is it; 什么时候 when;
什么时候能 when can; 什么时候可以 when can; 什么时候发货 , when will it ship;
什么时候能发货 , when can it ship; 什么时候可以发货 , when can it ship; 在哪里 , where is it; 哪里 where;
为什么 why; 怎么 how; 怎么样 , how is it; 如何 how; 有没有 is there; 是否 whether; 能否 could you;
能不能 can you; 可以吗 , is that OK; 你们能 can you; 能便宜一点 can it be a bit cheaper;
你们能便宜一点 can you make it a bit cheaper; 可以便宜一点 can it be a bit cheaper;
能给我们 can you give us; 可以给我们 can you give us; 什么 what; 贵公司能否 could your company;
大概什么时候 roughly when;
)";

// Who acts, what binds a sentence together, and how much of a thing there is.
inline constexpr std::string_view connections = R"(
我们 we; 我们的 our; 我的 my; 你们 you; 你们的 your; 您的 your; 你的 your; 我司 our company;
我们公司 our company; 贵司 your company; 贵公司 your company; 我是 I am; 我们是 we are; 这是 this is;
这个 this; 这款 this; 这批 this batch of; 这次 this time; 这些 these; 每个 each; 每月 per month; 其他 other;
所有 all; 全部 all; 一些 some; 一下; 一个 a; 一款 a; 一份 a; 一家 a; 两个 two; 很多 many; 更多 more;
太多 too many; 如果 if; 如 if; 由于 because of; 所以 so; 但 but; 但是 but; 另外 in addition; 而且 and;
并 and; 以及 and; 还是 or; 关于 regarding; 根据 according to; 按 by; 对 for; 对于 for; 为 for; 从 from;
来自 from; 由 by; 包括 including; 等 etc.; 以上 or more; 以内 or less; 左右 or so; 大概 about; 约 about;
至少 at least; 一共 in total; 非常 very; 太 too; 更 more; 最 most; 还 still; 都 all; 不 not; 没 not;
没有 do not have; 不会 will not; 不能 cannot; 无法 cannot; 不得不 have to; 能 can; 可以 can; 会 will;
将 will; 应该 should; 必须 must; 可能 may; 和 and; 与 with; 或 or; 后 afterwards,; 每款 per style;
否则 otherwise; 他们 they; 我们工厂 our factory; 因为 because; 只 only; 只有 only;
)";

// When something is done.
inline constexpr std::string_view times = R"(
今天 today; 今晚 tonight; 明天 tomorrow; 周一 Monday; 周五 Friday; 本周五 this Friday;
本周五之前 by this Friday; 本周 this week; 上周 last week; 下周 next week; 本月 this month;
上个月 last month; 下个月 next month; 月底 the end of the month; 月底前 by the end of the month;
今年 this year; 两周 two weeks; 一个月 one month; 现在 now; 目前 at present; 之前 previously;
之后 afterwards; 以后 in the future; 最近 recently; 上次 last time; 稍后 later; 尽快 promptly;
马上 immediately; 及时 promptly; 准时 on time; 随时 at any time; 提前 in advance; 已 already; 已经 already;
正在 now; 再次 again; 时间 time; 春节假期 the Chinese New Year holiday;
收到定金后 after receiving the deposit,; 收到货后 after receiving the goods,;
收到样品后 after receiving the sample,; 付款后 after payment,; 确认后 after confirmation,;
下单后 after the order,; 发货前 before shipment; 出货前 before shipment; 一周 one week;
)";

// What is done.
inline constexpr std::string_view actions = R"(
需要 need; 我们需要 we need; 我们想 we would like to; 我想 I would like to; 想 want to; 要 want;
我要 I want; 希望 hope; 预计 expected; 知道 know; 通知 notify; 联系 contact; 联系我们 contact us;
回复 reply; 推荐 recommend; 要求 request; 问 ask; 检查 check; 确认 confirm; 保证 guarantee; 同意 agree to;
支持 support; 帮我 help me; 帮我们 help us; 合作 cooperation; 长期合作 long-term cooperation;
负责 be responsible for; 由我们负责 is our responsibility; 承担 bear; 由我们承担 is borne by us;
给我们 to us; 给我 to me; 给您 to you; 发给我们 to us; 发给我 to me; 发给您 send you;
发给客户 send to the customer; 发 send; 寄 send; 寄出 sent out; 寄给您 sent to you; 寄给我们 send to us;
提供 provide; 附件是 attached is; 下单 place an order; 下订单 place an order; 订购 order; 买 buy;
修改 modify; 调整 adjust; 更换 replace; 退货 return the goods; 退还 be refunded; 赔偿 compensation;
解决 solve; 处理 handle; 影响 affect; 发现 found; 延迟 delayed; 推迟 delayed by; 会推迟 will be delayed by;
生产 production; 专业生产 specializing in; 设计 design; 签 sign; 安排 arrange; 准备好 ready;
含税 including tax; 发货 ship; 出货 ship; 已发货 has been shipped; 已经发货 has been shipped; 交货 deliver;
到货 arrive; 到港 arrived at the port; 已经到港 have arrived at the port; 付 pay; 付款 payment; 支付 pay;
付清 paid in full; 已经付了 have already paid; 我们已收到 we have received;
还没有收到 have not yet received; 我们还没有收到 we have not yet received; 降价 lower the price; 上涨 rise;
出口 export; 出口到 exported to; 感兴趣 interested;
我们对贵公司的产品很感兴趣 we are very interested in your products;
我们对你们的产品很感兴趣 we are very interested in your products; 打开 open; 打不开 does not open; 下 place;
问下 ask about; 报 quote; 等到 until; 要等到 not before; 主要生产 mainly produce; 我们预计 we expect;
安排发货 arrange shipment; 发给 sent to; 接受 accept; 印 print; 需要更换 needs to be replaced;
有现货 have stock; 装 hold; 考虑 consider;
)";

// What trade letters are about, and how it is, beside the terms of the trade.
inline constexpr std::string_view things = R"(
公司 company; 厂家 manufacturer; 产品 products; 产品目录 product catalog; 目录 catalog; 新款 new model;
货 goods; 货物 goods; 款式 style; 图片 pictures; 图纸 drawing; 样品费 sample fee; 配件 accessories;
原材料 raw materials; 原材料价格 raw material prices; 不锈钢 stainless steel; 品牌 brand; 红色 red;
蓝色 blue; 黑色 black; 价格 price; 目标价 target price; 最优惠的价格 your best price; 价格表 price list;
报价单 quotation; 有效期 validity; 费用 cost; 运费 freight cost; 余款 balance payment;
见提单副本 against a copy of the B/L; 银行账户 bank account; 发票 invoice; 订单 order; 大货订单 bulk order;
信息 information; 资料 materials; 文件 documents; 附件 attachment; 邮件 email; 微信 WeChat; 地址 address;
链接 link; 联系方式 contact details; 快递单号 tracking number; 问题 problem; 质量 quality;
质量问题 quality problem; 质量要求 quality requirements; 保修期 warranty period; 标准 standard;
证书 certificate; 原因 reason; 进度 progress; 交期 lead time; 中国 China; 美国 the United States;
欧洲 Europe; 上海 Shanghai; 深圳 Shenzhen; 北京 Beijing; 人民币 RMB; 高 high; 贵 expensive;
有点贵 a bit expensive; 太高 too high; 最好 best; 最低 lowest; 最新 latest; 更好 better; 一样 the same;
主要 mainly; 有竞争力 competitive; 免费 free; 破损 damage; 损坏 damaged; 满意 satisfied; 条款 terms;
海运费 sea freight; 联系人 contact person; 收货地址 delivery address; 电话 phone; 经验 experience;
月产能 monthly production capacity; 这款产品 this product;
)";

} // namespace lumarin::service::phrases
